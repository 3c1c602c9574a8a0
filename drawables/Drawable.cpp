#include "drawables/Drawable.h"

#include <istream>

#include "errors/KT_Error.h"
#include "format/FieldReaders.h"
#include "format/KT_Format.h"
#include "format/RecordDispatch.h"
#include "graphics/Image.h"

namespace KT_AC {

int32_t drawableXOffset = 0;

void Drawable::paint(Image& image, int stage)
{
    switch (stage) {
    case STAGE_UPDATE:
        if (!isStatic && !format->getElements().getElement(contentId).isUnchanged()) {
            blank(image);
            redraw(image);
        }
        break;
    case STAGE_ALL_STATIC:
        if (isStatic)
            redraw(image);
        break;
    case STAGE_VARIABLE:
        if (!isStatic)
            redraw(image);
        break;
    case STAGE_STATIC:
        if (isStatic && !paintedAtParse)
            redraw(image);
        break;
    default:
        break;
    }
}

void Drawable::blank(Image& image)
{
    if (paintedArea.top < paintedArea.bottom)
        image.restoreArea(paintedArea);
}

void Drawable::readCommonFields(std::istream& stream)
{
    x = KT_FMT::readNumber(stream, 5, true) + drawableXOffset;
    y = KT_FMT::readNumber(stream, 5, true);
    orientation = KT_FMT::readOrientation(stream);
    const char flag = KT_FMT::readByte(stream);
    if (flag != '0' && flag != '1')
        throw KT_ERROR::bad_escape_sequence(KT_ERROR::text(
            "datamatrix,qrcode,databar: reversed option needs to be '0' or '1', got: ", flag, " ", x, " ", y));
    reversed = flag == '1';
    contentId = KT_FMT::readContentField(stream, *format);
    isStatic = !contentId.empty() && contentId[0] == '&';
}

}  // namespace KT_AC
