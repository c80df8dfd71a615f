/// `qk7 errors`: the status numbers of the library with their names and words.

#include "apps/qk7/Arguments.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/Document.h"
#include "apps/qk7/File.h"

#include "TessarinCalibrateSDK.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>
#include <optional>

namespace qk7 {

namespace {

struct StStatus {
    long m_nNumber;
    const char* m_szName;
};

#define QK7_STATUS(name)                                                                           \
    { name, #name }

// The public header in its order; a test compares the two.
const StStatus aStatuses[] = {
    QK7_STATUS(QMT_SUCCESS),
    QK7_STATUS(QMT_ERROR_INITIALIZED),
    QK7_STATUS(QMT_ERROR_NOT_INITIALIZED),
    QK7_STATUS(QMT_ERROR_BITMAP_PTR),
    QK7_STATUS(QMT_ERROR_BITMAP_PLANE),
    QK7_STATUS(QMT_ERROR_BITMAP_BITCOUNT),
    QK7_STATUS(QMT_ERROR_BITMAP_PELS),
    QK7_STATUS(QMT_ERROR_BITMAP_DIMENSION),
    QK7_STATUS(QMT_ERROR_BITMAP_NO_FINGER),
    QK7_STATUS(QMT_ERROR_BITMAP_COMPRESSION),
    QK7_STATUS(QMT_ERROR_BITMAP_HEADERSIZE),
    QK7_STATUS(QMT_ERROR_TEMPLATE_PTR),
    QK7_STATUS(QMT_ERROR_TEMPLATE_SIZE),
    QK7_STATUS(QMT_ERROR_TEMPLATE_PTRPTR),
    QK7_STATUS(QMT_ERROR_TEMPLATE_PTR_NULL),
    QK7_STATUS(QMT_ERROR_TEMPLATE_SIZE_PTR),
    QK7_STATUS(QMT_ERROR_FORMAT_NOTSUPPORTED),
    QK7_STATUS(QMT_ERROR_PARAM_OUT_OF_RANGE),
    QK7_STATUS(QMT_ERROR_BITMAP_UNEXPECTED_FILEHEADER),
    QK7_STATUS(QMT_ERROR_PARAM_IS_MISSING),
    QK7_STATUS(QMT_ERROR_CURRUPT_BYTECODE),
    QK7_STATUS(QMT_ERROR_CURRUPT_DATA),
    QK7_STATUS(QMT_ERROR_UNEXPECTED_SIGNATURE),
    QK7_STATUS(QMT_ERROR_NO_HANDLE),
    QK7_STATUS(QMT_ERROR_INVALID_HANDLE),
    QK7_STATUS(QMT_ERROR_INVALID_PARAMETER),
    QK7_STATUS(QMT_ERROR_INVALID_OPTIONS_SETTING),
    QK7_STATUS(QMT_ERROR_PARAM_VALUE_DUPLICATE),
    QK7_STATUS(QMT_ERROR_INTERNAL),
    QK7_STATUS(QMT_ERROR_OUT_OF_MEMORY),
    QK7_STATUS(QMT_FATAL_ERROR_TERMINATION_NECESSARY),
    QK7_STATUS(QMT_ERROR_FROM_SYSTEM_FUNCTION),
    QK7_STATUS(QMT_ERROR_FILE_OPEN_FAIL),
    QK7_STATUS(QMT_ERROR_UNEXPECTED_EOF),
    QK7_STATUS(QMT_ERROR_WRITE_FAIL),
    QK7_STATUS(QMT_ERROR_IO),
    QK7_STATUS(QMT_ERROR_BMP_NO_SIGNATURE),
    QK7_STATUS(QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE),
    QK7_STATUS(QMT_ERROR_BAD_POINTER),
};

std::string Line(const StStatus& Status) {
    char szFront[64];
    std::snprintf(szFront, sizeof szFront, "%5ld  %-38s  ", Status.m_nNumber, Status.m_szName);
    return szFront + std::string(CalibrateGetErrorDescription(Status.m_nNumber)) + "\n";
}

Json JsonOf(const StStatus& Status) {
    return {{"number", Status.m_nNumber},
            {"name", Status.m_szName},
            {"words", CalibrateGetErrorDescription(Status.m_nNumber)}};
}

struct StErrorsCall {
    std::optional<long> m_nWanted;
    bool m_bJson = false;
};

void RunErrors(const StErrorsCall& Call) {
    std::string text;
    Json json = Json::array();
    for (const StStatus& status : aStatuses) {
        if (Call.m_nWanted && *Call.m_nWanted != status.m_nNumber)
            continue;
        text += Line(status);
        json.push_back(JsonOf(status));
    }
    if (text.empty())
        throw ClFailure(std::to_string(*Call.m_nWanted),
                        "is no number of the library; \"qk7 errors\" lists them");
    if (Call.m_bJson)
        PrintDocument("errors", json);
    else
        Print(text);
}

} // namespace

void AddErrors(CLI::App& rApp) {
    CLI::App* pCommand =
        rApp.add_subcommand("errors", "Lists the status numbers with their names and words");
    const auto pCall = std::make_shared<StErrorsCall>();
    pCommand->add_option("NUMBER", pCall->m_nWanted, "One number, such as -14")
        ->transform(WholeOrNegative())
        ->type_name("");
    pCommand->add_flag("--json", pCall->m_bJson, "Print a JSON document with an object for each");
    pCommand->callback([pCall] { RunErrors(*pCall); });
}

} // namespace qk7
