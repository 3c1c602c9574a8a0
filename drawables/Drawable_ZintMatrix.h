#pragma once
#include <cstdint>
#include <iosfwd>
#include <memory>

#include "drawables/Drawable.h"
#include "symbologies/ZintMatrixSymbol.h"

namespace KT_AC {

// The matrix codes of the library that share one record: ESC # B 10, 11, 13 and 14. The symbol lives as
// long as the drawable and turns itself; the drawable places it at x, y.
class Drawable_ZintMatrix : public Drawable {
public:
    void redraw(Image& image) override;

    int32_t getSize() const { return size; }
    int32_t getModule() const { return module; }
    int32_t getMargin() const { return margin; }
    int32_t getLevel() const { return level; }
    int32_t getInputMode() const { return inputMode; }
    bool getFlag() const { return flag; }
    const ZintMatrixSymbol& getSymbol() const { return *symbol; }

protected:
    explicit Drawable_ZintMatrix(KT_FMT::KT_Format& format) : Drawable(format) {}

    // Reads the record behind its two type characters and appends the drawable, with the symbol that
    // `make` builds from it, to the format.
    template <class Self, class Make>
    static void read(std::istream& stream, KT_FMT::KT_Format& format, Make make);

    int32_t size = 0;
    int32_t module = 0;
    // Read and kept; nothing that is painted takes it into account.
    int32_t margin = 0;
    int32_t level = 0;
    int32_t inputMode = 0;
    bool flag = false;
    std::unique_ptr<ZintMatrixSymbol> symbol;

private:
    void readFields(std::istream& stream);
};

// ESC # B 10.
class Drawable_QrCode : public Drawable_ZintMatrix {
public:
    explicit Drawable_QrCode(KT_FMT::KT_Format& format) : Drawable_ZintMatrix(format) {}
    static void read(std::istream& stream, KT_FMT::KT_Format& format);
};

// ESC # B 11.
class Drawable_HanxinCode : public Drawable_ZintMatrix {
public:
    explicit Drawable_HanxinCode(KT_FMT::KT_Format& format) : Drawable_ZintMatrix(format) {}
    static void read(std::istream& stream, KT_FMT::KT_Format& format);
};

// ESC # B 13: the level is read and ignored.
class Drawable_DMRectCode : public Drawable_ZintMatrix {
public:
    explicit Drawable_DMRectCode(KT_FMT::KT_Format& format) : Drawable_ZintMatrix(format) {}
    static void read(std::istream& stream, KT_FMT::KT_Format& format);
};

// ESC # B 14.
class Drawable_MicroQrCode : public Drawable_ZintMatrix {
public:
    explicit Drawable_MicroQrCode(KT_FMT::KT_Format& format) : Drawable_ZintMatrix(format) {}
    static void read(std::istream& stream, KT_FMT::KT_Format& format);
};

}  // namespace KT_AC
