#include "Tools/DumpFile.h"

#include "Tools/Allocate.h"
#include "Tools/DumpTarget.h"
#include "Tools/PlainLocale.h"
#include "Tools/Text.h"

#include <cstdarg>
#include <cstring>

using Vek::TextOrEmpty;

namespace {

constexpr std::size_t cnCommentSize = 1024;

char GuardCharacter(char c) {
    return c == '.' ? '_' : Vek::UpperLetter(c);
}

} // namespace

// ClDumpFile

ClDumpFile::ClDumpFile(const char* pFile, const char* pPath)
    : m_pName(Vek::CopyOf(TextOrEmpty(pFile))), m_pFile(Vek::OpenDump(pFile, pPath)) {}

ClDumpFile::~ClDumpFile() {
    std::fclose(m_pFile);
}

void ClDumpFile::Out(const char* pFormat, ...) {
    va_list arguments;
    va_start(arguments, pFormat);
    const Vek::ClPlainLocale plain; // a decimal point is part of the language written
    std::vfprintf(m_pFile, TextOrEmpty(pFormat), arguments);
    va_end(arguments);
}

void ClDumpFile::NewLines(int nCount) {
    for (int i = 0; i < nCount; ++i)
        std::fputc('\n', m_pFile);
}

void ClDumpFile::Comment(const char* pFormat, ...) {
    const Vek::ClPlainLocale plain;
    char szText[cnCommentSize];
    va_list arguments;
    va_start(arguments, pFormat);
    const int nLength = std::vsnprintf(szText, sizeof szText, TextOrEmpty(pFormat), arguments);
    va_end(arguments);
    if (nLength < 0 || static_cast<std::size_t>(nLength) >= sizeof szText)
        throw ClException("Comment to long", QMT_ERROR_INTERNAL, true, VEK_HERE);
    CommentLine(szText);
}

void ClDumpFile::GeneratedComment() {
    const std::tm now = Vek::LocalNow();
    CommentLine(Name());
    Comment("%02d.%02d.%04d, %02d:%02d:%02d Automatically created.", now.tm_mday, now.tm_mon + 1,
            now.tm_year + 1900, now.tm_hour, now.tm_min, now.tm_sec);
}

// C++

void ClDumpFile_C::CommentLine(const char* pText) {
    Out("// %s\n", TextOrEmpty(pText));
}

void ClDumpFile_C::Include(const char* pName) {
    Out("#include \"%s\"\n", TextOrEmpty(pName));
}

void ClDumpFile_C::Define(const char* pName, int nValue, const char* pType) {
    Out("#define %*s ((%s)%d)\n", m_nNameWidth, TextOrEmpty(pName), TextOrEmpty(pType), nValue);
}

void ClDumpFile_C::Define(const char* pName, double dValue, const char* pType) {
    Out("#define %*s ((%s)%f)\n", m_nNameWidth, TextOrEmpty(pName), TextOrEmpty(pType), dValue);
}

ClDumpFile_C_Header::ClDumpFile_C_Header(const char* pFile, const char* pPath)
    : ClDumpFile_C(pFile, pPath), m_pProtector(Vek::NewArrayPtr<char>(std::strlen(Name()) + 3)) {
    GetProtectorName(m_pProtector.get());
    Out("#ifndef %s\n", m_pProtector.get());
    Out("#define %s\n\n", m_pProtector.get());
}

ClDumpFile_C_Header::~ClDumpFile_C_Header() {
    Out("#endif //%s\n", m_pProtector.get());
}

void ClDumpFile_C_Header::GetProtectorName(char* pBuffer) const {
    *pBuffer++ = '_';
    for (const char* p = Name(); *p != '\0'; ++p)
        *pBuffer++ = GuardCharacter(*p);
    *pBuffer++ = '_';
    *pBuffer = '\0';
}

void ClDumpFile_C_Header::Const(const char* pName, int, const char* pType) {
    Out("extern const %s %s;\n", TextOrEmpty(pType), TextOrEmpty(pName));
}

void ClDumpFile_C_File::Const(const char* pName, int nValue, const char* pType) {
    Out("const %*s = ((%s)%d)\n", m_nNameWidth, TextOrEmpty(pName), TextOrEmpty(pType), nValue);
}

// Assembler

void ClDumpFile_ASM::CommentLine(const char* pText) {
    Out("; %s\n", TextOrEmpty(pText));
}

void ClDumpFile_ASM::Include(const char* pName) {
    Out("\tinclude \"%s\"\n", TextOrEmpty(pName));
}

void ClDumpFile_ASM::Define(const char* pName, int nValue, const char*) {
    Out("%s EQU %d\n", TextOrEmpty(pName), nValue);
}

void ClDumpFile_ASM::Define(const char*, double, const char*) {}

void ClDumpFile_ASM::Const(const char* pName, int nValue, const char*) {
    Out("%s EQU %d\n", TextOrEmpty(pName), nValue);
}
