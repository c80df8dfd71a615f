// The header in a program without exceptions: failures are error codes.

#include <TessarinCalibrateSDK.hpp>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <utility>

#if defined(__cpp_exceptions)
#error "This program is to be compiled with -fno-exceptions."
#endif

namespace {

int failures = 0;

void expect(bool bHolds, const char* szWhat) {
    if (!bHolds) {
        std::fprintf(stderr, "does not hold: %s\n", szWhat);
        ++failures;
    }
}

std::vector<unsigned char> file(const char* szName) {
    std::ifstream Stream(szName, std::ios::binary);
    return {std::istreambuf_iterator<char>(Stream), std::istreambuf_iterator<char>()};
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s scanner.cal\n", argv[0]);
        return 2;
    }
    std::error_code error;
    tessarin::Calibrator made(error);
    expect(!error && made, "a handle is made");
    tessarin::Calibrator calibrator = std::move(made);
    calibrator.setData(file(argv[1]), error);
    expect(!error, "a block is loaded");
    expect(calibrator.getData(error) == file(argv[1]), "it is given back");
    std::vector<unsigned char> out;
    calibrator.correct(std::vector<unsigned char>(40), out, error);
    expect(error == tessarin::statusCode(QMT_ERROR_BITMAP_HEADERSIZE), "a failure is told");
    return failures;
}
