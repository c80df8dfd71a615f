// Corrects one capture, in C++: the handle has an owner, and a status that is no success becomes
// an exception.
//
//     correct_cpp scanner.cal capture.bmp corrected.bmp

#include <TessarinCalibrateSDK.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::size_t fileHeaderSize = 14;

/// Turns a status into an exception with the library's words.
void require(const char* what, long status) {
    if (status != QMT_SUCCESS)
        throw std::runtime_error(std::string(what) + ": " + std::to_string(status) + " " +
                                 CalibrateGetErrorDescription(status));
}

class Calibration {
public:
    Calibration() : m_handle(CalibrateCreate()) {}
    Calibration(const Calibration&) = delete;
    Calibration& operator=(const Calibration&) = delete;
    ~Calibration() { CalibrateDelete(&m_handle); }

    void setOption(const char* option) {
        require("CalibrateSetOption", CalibrateSetOption(m_handle, option));
    }
    void setData(Bytes& block) {
        require("CalibrateSetData", CalibrateSetData(m_handle, block.data(), block.size()));
    }
    /// Corrects a bitmap block into another one.
    Bytes correct(Bytes& capture) {
        Bytes corrected(capture.size());
        unsigned long size = corrected.size();
        long status = Calibrate(m_handle, capture.data(), capture.size(), corrected.data(), &size);
        if (status == QMT_ERROR_TEMPLATE_SIZE && size > corrected.size()) {
            corrected.resize(size); // the size needed has been told
            status = Calibrate(m_handle, capture.data(), capture.size(), corrected.data(), &size);
        }
        require("Calibrate", status);
        corrected.resize(size);
        return corrected;
    }

private:
    void* m_handle;
};

Bytes readFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    if (!file)
        throw std::runtime_error(name + ": cannot be read");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Writes a bitmap block behind the header that bitmap files have.
void writeBitmap(const std::string& name, const Bytes& block) {
    Bytes header(fileHeaderSize);
    const auto put = [&](std::size_t at, std::size_t value) {
        for (std::size_t i = 0; i < 4; ++i)
            header[at + i] = static_cast<unsigned char>(value >> (8 * i));
    };
    header[0] = 'B';
    header[1] = 'M';
    put(2, fileHeaderSize + block.size());
    put(10, fileHeaderSize + 40 + 1024);
    std::ofstream file(name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(header.data()),
               static_cast<std::streamsize>(header.size()));
    file.write(reinterpret_cast<const char*>(block.data()),
               static_cast<std::streamsize>(block.size()));
    if (!file.flush())
        throw std::runtime_error(name + ": cannot be written");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s scanner.cal capture.bmp corrected.bmp\n", argv[0]);
        return 2;
    }
    try {
        Bytes data = readFile(argv[1]);
        Bytes capture = readFile(argv[2]);
        if (capture.size() < fileHeaderSize)
            throw std::runtime_error(std::string(argv[2]) + ": is no bitmap file");
        capture.erase(capture.begin(), capture.begin() + fileHeaderSize);

        Calibration calibration;
        calibration.setOption("DynamicFingerMask=false");
        calibration.setData(data);
        writeBitmap(argv[3], calibration.correct(capture));
        return 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
