#include "Tools/ErrorCatalogue.h"

#include <cstring>
#include <cwchar>

// Narrow and wide text of a row are made from one literal, so that they cannot differ.
#define TESSARIN_ROW(code, description)                                                            \
    { code, description, L"" description, #code, L"" #code }

const ST_ErrorMapEntry g_aErrorMap[] = {
    TESSARIN_ROW(QMT_SUCCESS, "No errors occurred."),
    TESSARIN_ROW(QMT_ERROR_INITIALIZED, "Multiple initialization."),
    TESSARIN_ROW(QMT_ERROR_NOT_INITIALIZED, "Prior initialization is necessary."),
    TESSARIN_ROW(QMT_ERROR_BITMAP_PTR, "The input image is not valid."),
    TESSARIN_ROW(QMT_ERROR_BITMAP_PLANE,
                 "Only grey-scale images with 8-bit color-depth are supported."),
    TESSARIN_ROW(QMT_ERROR_BITMAP_BITCOUNT, "BitCount has to be 8."),
    TESSARIN_ROW(QMT_ERROR_BITMAP_PELS, "Pels are not in a valid range (see documentation)."),
    TESSARIN_ROW(QMT_ERROR_BITMAP_DIMENSION, "The image is too small or too big."),
    TESSARIN_ROW(QMT_ERROR_BITMAP_NO_FINGER, "No Finger found in the image."),
    TESSARIN_ROW(QMT_ERROR_BITMAP_COMPRESSION, "The compression FOCC is not supported."),
    TESSARIN_ROW(QMT_ERROR_BITMAP_HEADERSIZE, "The header size of the Bitmap is unknown."),
    TESSARIN_ROW(QMT_ERROR_TEMPLATE_PTR, "The template is not valid."),
    TESSARIN_ROW(QMT_ERROR_TEMPLATE_SIZE, "The size of the finger template is not valid."),
    TESSARIN_ROW(QMT_ERROR_TEMPLATE_PTRPTR, "The template-pointer is not valid."),
    TESSARIN_ROW(QMT_ERROR_TEMPLATE_PTR_NULL, "The template-pointer is not valid."),
    TESSARIN_ROW(QMT_ERROR_TEMPLATE_SIZE_PTR, "Pointer to template-size is not valid."),
    TESSARIN_ROW(QMT_ERROR_FORMAT_NOTSUPPORTED, "The required format is not supported."),
    TESSARIN_ROW(QMT_ERROR_PARAM_OUT_OF_RANGE, "One of the parameters is out of range."),
    TESSARIN_ROW(QMT_ERROR_BITMAP_UNEXPECTED_FILEHEADER,
                 "Fileheader found but expected bitmapinfoheader."),
    TESSARIN_ROW(QMT_ERROR_PARAM_IS_MISSING, "One of the required parameter is missing."),
    TESSARIN_ROW(QMT_ERROR_CURRUPT_BYTECODE,
                 "The input is corrupt can be a memoryblock or a file."),
    TESSARIN_ROW(QMT_ERROR_CURRUPT_DATA,
                 "The input is corrupt; it can be a memoryblock or a file."),
    TESSARIN_ROW(QMT_ERROR_UNEXPECTED_SIGNATURE, "The input signature is not expected here."),
    TESSARIN_ROW(QMT_ERROR_NO_HANDLE, "The handle parameter is set to NULL."),
    TESSARIN_ROW(QMT_ERROR_INVALID_HANDLE,
                 "The handle parameter is not a valid handle for that function."),
    TESSARIN_ROW(QMT_ERROR_INVALID_OPTIONS_SETTING,
                 "The options are set in a combination which will not work."),
    TESSARIN_ROW(QMT_ERROR_PARAM_VALUE_DUPLICATE,
                 "The given parameter is a duplicate of a previously given parameter."),
    TESSARIN_ROW(QMT_ERROR_INTERNAL, "Internal error."),
    TESSARIN_ROW(QMT_ERROR_OUT_OF_MEMORY, "Memory allocation failed or given mem-block too small."),
    TESSARIN_ROW(
        QMT_FATAL_ERROR_TERMINATION_NECESSARY,
        "A fatal error has occurred. Process integrity may be corrupted. Terminate application."),
    TESSARIN_ROW(QMT_ERROR_FROM_SYSTEM_FUNCTION, "A error has occurred in a system function call. "
                                                 "use the system errorfunction to get more info."),
    TESSARIN_ROW(QMT_ERROR_FILE_OPEN_FAIL, "Failed to open the specified file."),
    TESSARIN_ROW(QMT_ERROR_UNEXPECTED_EOF, "Unexpected end of file."),
    TESSARIN_ROW(QMT_ERROR_WRITE_FAIL, "Failed to write the data."),
    TESSARIN_ROW(QMT_ERROR_IO, "Unspecified I/O error."),
    TESSARIN_ROW(QMT_ERROR_INVALID_PARAMETER, "One(or more) parameter(s) is(are) invalid."),
    TESSARIN_ROW(QMT_ERROR_BMP_NO_SIGNATURE, "No BMP signature found."),
    TESSARIN_ROW(
        QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE,
        "The calibration failed to generate the calibrations data from the given pattern."),
    TESSARIN_ROW(QMT_ERROR_BAD_POINTER, "The pointer is bad or invalid."),
};

const std::size_t g_nErrorMapEntries = sizeof(g_aErrorMap) / sizeof(g_aErrorMap[0]);

namespace {

template <class Match>
const ST_ErrorMapEntry* FindEntry(Match match) {
    for (const ST_ErrorMapEntry& entry : g_aErrorMap)
        if (match(entry))
            return &entry;
    return nullptr;
}

} // namespace

// Each lookup has an unknown entry of its own.
#define TESSARIN_UNKNOWN_ENTRY                                                                     \
    {                                                                                              \
        2147483647L, "Unknown error code.", L"Unknown error code.", "QMT_ERROR_UNKOWN_ERROR_CODE", \
            L"QMT_ERROR_UNKOWN_ERROR_CODE"                                                         \
    }

template <>
const ST_ErrorMapEntry& GetErrorInfoT<long>(long code) {
    static const ST_ErrorMapEntry unknown = TESSARIN_UNKNOWN_ENTRY;
    const ST_ErrorMapEntry* found =
        FindEntry([code](const ST_ErrorMapEntry& entry) { return entry.m_nCode == code; });
    return found != nullptr ? *found : unknown;
}

template <>
const ST_ErrorMapEntry& GetErrorInfoT<const char*>(const char* name) {
    static const ST_ErrorMapEntry unknown = TESSARIN_UNKNOWN_ENTRY;
    if (name == nullptr)
        return unknown;
    const ST_ErrorMapEntry* found = FindEntry(
        [name](const ST_ErrorMapEntry& entry) { return std::strcmp(entry.m_szName, name) == 0; });
    return found != nullptr ? *found : unknown;
}

template <>
const ST_ErrorMapEntry& GetErrorInfoT<const wchar_t*>(const wchar_t* name) {
    static const ST_ErrorMapEntry unknown = TESSARIN_UNKNOWN_ENTRY;
    if (name == nullptr)
        return unknown;
    const ST_ErrorMapEntry* found = FindEntry(
        [name](const ST_ErrorMapEntry& entry) { return std::wcscmp(entry.m_wszName, name) == 0; });
    return found != nullptr ? *found : unknown;
}

const ST_ErrorMapEntry& GetVekErrorInfo(long code) {
    return GetErrorInfoT<long>(code);
}

const ST_ErrorMapEntry& GetVekErrorInfo(const char* name) {
    return GetErrorInfoT<const char*>(name);
}

const ST_ErrorMapEntry& GetVekErrorInfo(const wchar_t* name) {
    return GetErrorInfoT<const wchar_t*>(name);
}

extern "C" const char* GetErrorDescriptionIntern(long code) {
    return GetVekErrorInfo(code).m_szDescription;
}

extern "C" const wchar_t* GetErrorDescriptionInternW(long code) {
    return GetVekErrorInfo(code).m_wszDescription;
}
