// A scanner's blocks and captures in memory, around the steps of a task.
#include <TessarinCalibrateSDK.hpp>

#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

using Block = std::vector<unsigned char>;

static Block load(const char* name, long skip = 0) {
    std::ifstream file(name, std::ios::binary);
    const Block all{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return Block(all.begin() + skip, all.end());
}

static void show(tessarin::ConstBytes image) {
    if (image.size() != 154664)
        throw std::length_error("no corrected image");
}

int main() {
    const Block data = load("scanner.cal"), capture = load("capture.bmp", 14);
    const Block target = load("target.bmp", 14), second = load("second.bmp", 14);
    const Block empty = load("empty.bmp", 14);
    const std::vector<Block> captures{capture, empty, capture};
    Block corrected;
    tessarin::Calibrator calibrator;
    calibrator.setData(data);
    {
@BLOCK@
    }
    (void)show;
}
