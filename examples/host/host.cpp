// A small host of the format engine: it keeps its persistent values in a store file of its own, stores a
// format with a persistent counter in slot 1 on its first run, and on every run loads the slot, prints the
// label once and says what the counter showed; then it paints two of the built-in test formats.
//
//   ktr-host <store file> <slot directory> <font directory>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "fonts/FontProvider.h"
#include "format/FormatInterface.h"
#include "graphics/Image.h"
#include "persistence/KT_Storage.h"
#include "persistence/PersistentArray.h"
#include "persistence/SimpleFS.h"

namespace {

constexpr uint32_t storeSize = 8192;

// The host's persistent memory: a file read whole at the start and written back at the end, as a device
// with battery-backed memory would keep it.
class StoreFile : public SRAM::PersistentArray {
public:
    explicit StoreFile(std::string path) : path(std::move(path)), bytes(storeSize, 0)
    {
        std::ifstream in(this->path, std::ios::binary);
        fresh = !in.read(reinterpret_cast<char*>(bytes.data()), storeSize);
    }
    ~StoreFile() override
    {
        std::ofstream(path, std::ios::binary | std::ios::trunc)
            .write(reinterpret_cast<const char*>(bytes.data()), storeSize);
    }
    bool isFresh() const { return fresh; }

    void flush(uint32_t, uint32_t) override {}
    void writeByte(uint32_t address, uint8_t value) override { bytes.at(address) = value; }
    uint8_t readByte(uint32_t address) override { return bytes.at(address); }
    uint32_t size() override { return storeSize; }

private:
    std::string path;
    std::vector<uint8_t> bytes;
    bool fresh = true;
};

// A label with a counter that the store keeps: "Lot" and four digits, from 5 on.
const std::string labelFormat = "HOST LABEL"
                                "\x1bVCLot\vS000000005000009999000000001000000001000000005\vL00004Lot \v\v"
                                "\x1b#T05000400004000VCLot\v12L000\xff";

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cout << "usage: ktr-host <store file> <slot directory> <font directory>\n";
        return 2;
    }
    fontProvider = std::make_unique<FontProvider>();
    fontProvider->init(argv[3]);

    StoreFile memory(argv[1]);
    SimpleFS store(memory, 0, storeSize, memory.isFresh());
    Image raster(640, 608);
    KT_FMT::KT_Storage storage(std::string(argv[2]) + "/", &store, 9, 1, 608, false, &raster, nullptr);

    storage.load(1);
    if (!storage.hasFormat()) {
        std::istringstream in(labelFormat);
        std::string answer;
        storage.store(answer, in);
        std::cout << "stored the label in slot 1\n";
    }
    KT_INTERFACE::FormatInterface& label = storage.getFormat();
    std::cout << "printing " << label.getResultOfElement("VCLot") << "\n";
    raster.saveTrimmed("label.bmp");
    label.raisePrinted();

    // Two patterns of the print head's test set: vertical bars and a box of 20 mm.
    storage.loadTestFormat(1, {}, {});
    raster.saveTrimmed("bars.bmp");
    raster.clear();
    storage.loadTestFormat(10, {}, {20});
    raster.saveTrimmed("box.bmp");
    std::cout << "painted two test formats\n";
    return 0;
}
