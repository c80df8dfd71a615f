#include "apps/qk7/InfoReport.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace qk7 {

namespace {

using Json = nlohmann::ordered_json;

#ifdef __GNUC__
__attribute__((format(printf, 1, 2)))
#endif
std::string
Format(const char* szFormat, ...) {
    char szText[256];
    va_list arguments;
    va_start(arguments, szFormat);
    std::vsnprintf(szText, sizeof szText, szFormat, arguments);
    va_end(arguments);
    return szText;
}

/// A line of the text form.
std::string Row(const std::string& Name, const std::string& Value) {
    return Format("  %-20s ", Name.c_str()) + Value + "\n";
}

/// To a hundredth, as resolutions in dpi are told.
double Dpi(double dPelsPerMetre) {
    return std::round(dPelsPerMetre * 0.0254 * 100.0) / 100.0;
}

/// Foreign text without what could drive a terminal.
std::string Visible(const std::string& Text) {
    std::string visible;
    for (const char c : Text) {
        const unsigned int n = static_cast<unsigned char>(c);
        visible += n >= 0x20 && n < 0x7F ? std::string(1, c) : Format("\\x%02x", n);
    }
    return visible;
}

std::string FrameText(const StFrame& Frame) {
    std::string size = Format("%u x %u pixels", Frame.m_nWidth, Frame.m_nHeight);
    if (Frame.m_nPelsX == 0 && Frame.m_nPelsY == 0)
        return size;
    return size + Format(", %u x %u pixels/m (%.2f x %.2f dpi)", Frame.m_nPelsX, Frame.m_nPelsY,
                         Dpi(Frame.m_nPelsX), Dpi(Frame.m_nPelsY));
}

Json FrameJson(const StFrame& Frame) {
    Json json = {{"width", Frame.m_nWidth}, {"height", Frame.m_nHeight}};
    if (Frame.m_nPelsX == 0 && Frame.m_nPelsY == 0)
        return json;
    json["pixels_per_metre"] = {Frame.m_nPelsX, Frame.m_nPelsY};
    json["dpi"] = {Dpi(Frame.m_nPelsX), Dpi(Frame.m_nPelsY)};
    return json;
}

std::string PointsText(const StPoints& Points) {
    std::string text = Format("%u", Points.m_nCount);
    if (Points.m_nCount > Points.m_nNotFinite)
        text +=
            Format(", x %.3f to %.3f, y %.3f to %.3f", static_cast<double>(Points.m_afMin[0]),
                   static_cast<double>(Points.m_afMax[0]), static_cast<double>(Points.m_afMin[1]),
                   static_cast<double>(Points.m_afMax[1]));
    if (Points.m_nNotFinite > 0)
        text += Format(", %u of them NOT FINITE", Points.m_nNotFinite);
    return text;
}

Json PointsJson(const StPoints& Points) {
    Json json = {{"count", Points.m_nCount}, {"not_finite", Points.m_nNotFinite}};
    if (Points.m_nCount > Points.m_nNotFinite)
        json["extent"] = {{"min", Points.m_afMin}, {"max", Points.m_afMax}};
    return json;
}

std::string ChecksumText(const std::optional<StChecksum>& Checksum) {
    if (!Checksum)
        return "none in this layout";
    if (Checksum->Ok())
        return Format("0x%08x, ok", Checksum->m_nStored);
    return Format("WRONG: 0x%08x stored, 0x%08x computed", Checksum->m_nStored,
                  Checksum->m_nComputed);
}

Json ChecksumJson(const std::optional<StChecksum>& Checksum) {
    if (!Checksum)
        return nullptr;
    return {{"stored", Checksum->m_nStored},
            {"computed", Checksum->m_nComputed},
            {"ok", Checksum->Ok()}};
}

std::string BytesBehindText(std::size_t nBytes) {
    return nBytes == 0 ? "" : Row("bytes behind", Format("%zu, without meaning", nBytes));
}

const char* KindName(const StCalibrationInfo&) {
    return "calibration block";
}
const char* KindName(const StPrecalculatedInfo&) {
    return "precalculated block";
}
const char* KindName(const StBitmapInfo&) {
    return "bitmap";
}

const char* KindName(const StPngInfo&) {
    return "PNG picture";
}

std::string Rows(const StCalibrationInfo& Info) {
    std::string text = Row("tags", Visible(Info.m_Tag) + " " + Visible(Info.m_SubTag));
    text += Row("version", Visible(Info.m_Version) + Format(" (layout %d)", Info.m_nLayout));
    text += Row("source", FrameText(Info.m_Source));
    text += Row("target", FrameText(Info.m_Target));
    text += Row("planes", Format("%u", Info.m_nPlanes));
    text += Row("background", Info.m_nBackground ? Format("%u", unsigned{*Info.m_nBackground})
                                                 : "none in this layout");
    text += Row("target points", PointsText(Info.m_TargetPoints));
    for (std::size_t i = 0; i < Info.m_aActualPoints.size(); ++i)
        text += Row(Format("actual points %zu", i), PointsText(Info.m_aActualPoints[i]));
    return text + Row("checksum", ChecksumText(Info.m_Checksum)) +
           BytesBehindText(Info.m_nBytesBehind);
}

void AddFields(Json& rJson, const StCalibrationInfo& Info) {
    rJson["tags"] = {Info.m_Tag, Info.m_SubTag};
    rJson["version"] = Info.m_Version;
    rJson["layout"] = Info.m_nLayout;
    rJson["source"] = FrameJson(Info.m_Source);
    rJson["target"] = FrameJson(Info.m_Target);
    rJson["planes"] = Info.m_nPlanes;
    rJson["background"] = Info.m_nBackground ? Json(*Info.m_nBackground) : Json(nullptr);
    rJson["target_points"] = PointsJson(Info.m_TargetPoints);
    rJson["actual_points"] = Json::array();
    for (const StPoints& points : Info.m_aActualPoints)
        rJson["actual_points"].push_back(PointsJson(points));
    rJson["checksum"] = ChecksumJson(Info.m_Checksum);
    rJson["bytes_behind"] = Info.m_nBytesBehind;
}

std::string Rows(const StPrecalculatedInfo& Info) {
    return Row("version", Visible(Info.m_Version)) + Row("hash", Info.m_Hash) +
           Row("source", FrameText(Info.m_Source)) + Row("target", FrameText(Info.m_Target)) +
           Row("planes", Format("%u", Info.m_nPlanes)) +
           Row("background", Format("%u", unsigned{Info.m_nBackground})) +
           Row("entries",
               std::to_string(Info.m_nEntries) + " of " + std::to_string(cnEntrySize) + " bytes") +
           Row("without source", std::to_string(Info.m_nWithoutSource)) +
           BytesBehindText(Info.m_nBytesBehind);
}

void AddFields(Json& rJson, const StPrecalculatedInfo& Info) {
    rJson["version"] = Info.m_Version;
    rJson["hash"] = Info.m_Hash;
    rJson["source"] = FrameJson(Info.m_Source);
    rJson["target"] = FrameJson(Info.m_Target);
    rJson["planes"] = Info.m_nPlanes;
    rJson["background"] = Info.m_nBackground;
    rJson["entries"] = Info.m_nEntries;
    rJson["entry_bytes"] = cnEntrySize;
    rJson["entries_without_source"] = Info.m_nWithoutSource;
    rJson["bytes_behind"] = Info.m_nBytesBehind;
}

std::string Implied(const StBitmapInfo& Info) {
    if (!Info.m_nImpliedBytes)
        return "the header's numbers are not those of an image";
    const std::string implied = std::to_string(*Info.m_nImpliedBytes);
    if (*Info.m_nImpliedBytes == Info.m_nBlockBytes)
        return implied + ", as the header implies";
    return std::to_string(Info.m_nBlockBytes) + ", but the header implies " + implied;
}

std::string Rows(const StBitmapInfo& Info) {
    std::string text =
        Row("file header", Info.m_bFileHeader ? Format("yes: file size %u, pixels at %u",
                                                       Info.m_nFileSize, Info.m_nPixelOffset)
                                              : "no");
    text += Row("size", Format("%d x %d pixels", Info.m_nWidth, Info.m_nHeight));
    text += Row("depth", Format("%u bits, %u plane(s), compression %u", unsigned{Info.m_nBits},
                                unsigned{Info.m_nPlanes}, Info.m_nCompression));
    text += Row("resolution", Format("%d x %d pixels/m (%.2f x %.2f dpi)", Info.m_nPelsX,
                                     Info.m_nPelsY, Dpi(Info.m_nPelsX), Dpi(Info.m_nPelsY)));
    text += Row("colours", Format("%u used, %u important", Info.m_nColours, Info.m_nImportant));
    text += Row("image size", Format("%u", Info.m_nImageSize));
    return text + Row("block bytes", Implied(Info));
}

void AddFields(Json& rJson, const StBitmapInfo& Info) {
    rJson["file_header"] = nullptr;
    if (Info.m_bFileHeader)
        rJson["file_header"] = {{"file_size", Info.m_nFileSize},
                                {"pixel_offset", Info.m_nPixelOffset}};
    rJson["width"] = Info.m_nWidth;
    rJson["height"] = Info.m_nHeight;
    rJson["planes"] = Info.m_nPlanes;
    rJson["bits"] = Info.m_nBits;
    rJson["compression"] = Info.m_nCompression;
    rJson["image_size"] = Info.m_nImageSize;
    rJson["pixels_per_metre"] = {Info.m_nPelsX, Info.m_nPelsY};
    rJson["dpi"] = {Dpi(Info.m_nPelsX), Dpi(Info.m_nPelsY)};
    rJson["colours_used"] = Info.m_nColours;
    rJson["colours_important"] = Info.m_nImportant;
    rJson["block_bytes"] = Info.m_nBlockBytes;
    rJson["implied_bytes"] = Info.m_nImpliedBytes ? Json(*Info.m_nImpliedBytes) : Json(nullptr);
}

/// As the format numbers them.
const char* ColourName(int nColourType) {
    const char* aszNames[] = {
        "grey", "", "colour", "palette", "grey with alpha", "", "colour with alpha"};
    return nColourType >= 0 && nColourType <= 6 ? aszNames[nColourType] : "";
}

std::string ResolutionText(const StPngInfo& Info) {
    if (Info.m_nPelsX == 0 || Info.m_nPelsY == 0)
        return "not told";
    return Format("%u x %u pixels/m (%.2f x %.2f dpi)", Info.m_nPelsX, Info.m_nPelsY,
                  Dpi(Info.m_nPelsX), Dpi(Info.m_nPelsY));
}

std::string Rows(const StPngInfo& Info) {
    return Row("size", Format("%u x %u pixels", Info.m_nWidth, Info.m_nHeight)) +
           Row("depth", Format("%d bits, %s%s", Info.m_nBits, ColourName(Info.m_nColourType),
                               Info.m_bInterlaced ? ", interlaced" : "")) +
           Row("resolution", ResolutionText(Info));
}

void AddFields(Json& rJson, const StPngInfo& Info) {
    rJson["width"] = Info.m_nWidth;
    rJson["height"] = Info.m_nHeight;
    rJson["bits"] = Info.m_nBits;
    rJson["colours"] = ColourName(Info.m_nColourType);
    rJson["interlaced"] = Info.m_bInterlaced;
    rJson["pixels_per_metre"] = nullptr;
    rJson["dpi"] = nullptr;
    if (Info.m_nPelsX == 0 || Info.m_nPelsY == 0)
        return;
    rJson["pixels_per_metre"] = {Info.m_nPelsX, Info.m_nPelsY};
    rJson["dpi"] = {Dpi(Info.m_nPelsX), Dpi(Info.m_nPelsY)};
}

std::string FirstBytes(const Bytes& Content) {
    std::string text;
    for (std::size_t i = 0; i < Content.size() && i < 8; ++i)
        text += Format(" %02x", unsigned{Content[i]});
    return text;
}

} // namespace

FileInfo ReadInfo(const Bytes& Content) {
    switch (KindOf(Content)) {
    case EFileKind::eCalibration:
        return ReadCalibrationInfo(Content);
    case EFileKind::ePrecalculated:
        return ReadPrecalculatedInfo(Content);
    case EFileKind::eBitmap:
        return ReadBitmapInfo(Content);
    case EFileKind::ePng:
        return ReadPngInfo(Content);
    case EFileKind::eUnknown:
        break;
    }
    if (Content.empty())
        throw ClFailure("is empty");
    throw ClFailure(
        "is no calibration block, precalculated block, bitmap or PNG picture; it begins with" +
        FirstBytes(Content));
}

std::string TextOf(const std::string& Path, std::size_t nBytes, const FileInfo& Info) {
    return std::visit(
        [&](const auto& info) {
            return Path + ": " + KindName(info) + ", " + std::to_string(nBytes) + " bytes\n" +
                   Rows(info);
        },
        Info);
}

Json JsonOf(const std::string& Path, std::size_t nBytes, const FileInfo& Info) {
    return std::visit(
        [&](const auto& info) {
            Json json = {{"file", Path}, {"kind", KindName(info)}, {"bytes", nBytes}};
            AddFields(json, info);
            return json;
        },
        Info);
}

} // namespace qk7
