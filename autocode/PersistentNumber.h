#pragma once
#include <cstdint>
#include <cstring>
#include <stdexcept>

#include "persistence/SimpleFS.h"

namespace KT_AC {

// One number of a counter, which a persistent format mirrors in a file of 4 bytes in its store.
template <class Number>
struct PersistentNumber {
    static_assert(sizeof(Number) == 4);

    uint32_t address = 0;
    SimpleFS* store = nullptr;
    Number value = 0;
    bool persistent = false;

    // Sets the number and writes it through to its file where it is mirrored.
    void set(Number number)
    {
        value = number;
        if (persistent)
            store->write(bytes(), sizeof value, address);
    }

    // Mirrors the number in a new file of the store.
    void createIn(SimpleFS& fileSystem)
    {
        store = &fileSystem;
        address = store->create(bytes(), sizeof value);
        persistent = true;
    }

    // Takes the number from the file at `where`, which must hold exactly the 4 bytes of one.
    void restoreFrom(SimpleFS& fileSystem, uint32_t where)
    {
        store = &fileSystem;
        address = where;
        // Deliberately outside the format's exception family.
        if (store->fileSize(address) != sizeof value)
            throw std::runtime_error("Size in SRAM doesn't match");
        uint8_t read[sizeof value] = {};
        store->read(read, sizeof value, address, nullptr, false);
        std::memcpy(&value, read, sizeof value);
        persistent = true;
    }

    // Deletes the file; from then on the number lives in memory alone.
    void forget()
    {
        if (!persistent)
            return;
        store->remove(address);
        persistent = false;
    }

private:
    const uint8_t* bytes() const { return reinterpret_cast<const uint8_t*>(&value); }
};

}  // namespace KT_AC
