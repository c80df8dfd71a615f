// The flat list of parameters read from any stream, and asked for its texts; enumerations with any
// list of names.

#include "Refusals.h"

#include "Tools/MemStream.h"
#include "Tools/ParameterInterface.h"

#include <iterator>

namespace {

Fuzz::ClMilestone s_Read("a list is read whole");

using List = ClParameterInterface;

/// A variable of every type.
struct StVariables {
    explicit StVariables(List& rList) {
        rList.AddParameter(&m_nByte, "Byte", "a byte", List::eInOut, 0.0, 100.0);
        rList.AddParameter(&m_nInt, "Int", "an int", List::eInOut, 0.0, 0.0);
        rList.AddParameter(&m_nLong, "Long", "a long", List::eIn, -10.0, 10.0);
        rList.AddParameter(&m_dReal, "Real", "a real", List::eOut, 0.0, 1.0);
        rList.AddBool(&m_bFlag, "Flag", "a flag", List::eInOut);
        rList.AddEnum(&m_nEnum, "Enum", "a name", "None\0First\0Second\0", List::eInOut,
                      sizeof m_nEnum);
        rList.AddParameterString(m_acText, static_cast<long>(std::size(m_acText)), "Text", "a text",
                                 List::eInOut);
        rList.AddComment("a remark");
    }

    unsigned char m_nByte = 3;
    int m_nInt = -4;
    long m_nLong = 5;
    double m_dReal = 0.25;
    bool m_bFlag = true;
    int m_nEnum = 1;
    char m_acText[16] = "words";
};

std::string Written(List& rList) {
    ClMemStream Out;
    rList.WriteToStream(Out);
    return {reinterpret_cast<const char*>(Out.GetData()), Out.Size()};
}

bool Load(List& rList, const std::string& Bytes, bool bStrict) {
    const Fuzz::ClBlock block(Bytes);
    ClMemStream In(static_cast<const unsigned char*>(block.Data()), block.Size());
    In.SetThrowOnShort(bStrict);
    return Fuzz::Try([&] { rList.ReadFromStream(In); });
}

/// All that a list tells of its entries.
void Texts(const List& Entries) {
    for (long i = 0; i < Entries.Count(); ++i) {
        const List::ClParameter* pEntry = Entries.GetParameter(i);
        Fuzz::Try([&] {
            Fuzz::Require(std::strlen(pEntry->szValue()) < 4096, "a value has a text");
            Fuzz::Require(pEntry->szType() != nullptr && pEntry->szDir() != nullptr,
                          "a type and a direction have words");
        });
    }
}

/// Names behind each other, each with its terminating zero, and an empty one behind the last.
std::string NameList(std::string Names) {
    std::replace(Names.begin(), Names.end(), ';', '\0');
    return Names + '\0' + '\0';
}

void Names(Fuzz::ClBytes& rBytes, List& rList) {
    List::ClParameter* pEnum = rList.GetParam("Enum");
    const Fuzz::ClBlock list(NameList(rBytes.Text(60)));
    const char* const pList = reinterpret_cast<const char*>(list.Data());
    const std::string Name = rBytes.Text(12);
    const long nValue = rBytes.NextSigned();
    const Fuzz::ClBlock room(std::string(static_cast<std::size_t>(1 + rBytes.Below(20)), '?'));
    char* const pRoom = reinterpret_cast<char*>(room.Data());
    const long nRoom = static_cast<long>(room.Size());
    Fuzz::Try([&] { pEnum->SetEnumList(pList, nullptr); });
    Fuzz::Try([&] { pEnum->SetEnum(Name.c_str()); });
    Fuzz::Try([&] { pEnum->SetEnum(nValue); });
    Fuzz::Try([&] { pEnum->EnumToStr(nValue, pList, pRoom, nRoom); });
    Fuzz::Try([&] { pEnum->FmtInt(pRoom, nRoom, pList, nValue); });
    Texts(rList);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    List Entries;
    StVariables Variables(Entries);
    Fuzz::ClBytes Bytes(pData, nSize);
    const bool bStrict = Bytes.Below(2) == 0;
    if (Bytes.Below(4) == 0) {
        Names(Bytes, Entries);
        return 0;
    }
    const bool bRead = Load(Entries, Bytes.Rest(), bStrict);
    Texts(Entries);
    if (!bRead)
        return 0;
    s_Read.Reach();
    const std::string First = Written(Entries);
    Fuzz::Require(Load(Entries, First, true) && Written(Entries) == First,
                  "a list that was written is read as the same");
    return 0;
}
