#include "format/ContentEscapeReader.h"

#include <cstdlib>
#include <utility>

#include "errors/KT_Error.h"

namespace KT_FMT {

namespace {

constexpr uint32_t idUnits = 30;
constexpr uint32_t parmUnits = 50;

KT_ERROR::bad_content_sequence illegalEscape(char got)
{
    return KT_ERROR::bad_content_sequence(
        KT_ERROR::text("illegal content escape sequence, expected '\\' or '<' but got '", got, "'"));
}

ContentItem byteItem(uint32_t value) { return ContentItem{ITEM_BYTE, value}; }

uint32_t asciiCode(const std::string& parm)
{
    const long code = std::strtol(parm.c_str(), nullptr, 10);
    if (code < 0 || code > 255)
        throw KT_ERROR::bad_content_sequence(KT_ERROR::text("illegal parameter to \\<ASC()> sequence: ", parm));
    return static_cast<uint32_t>(code);
}

}  // namespace

ContentEscapeReader::ContentEscapeReader(SequenceHook sequenceHook, ItemFilter itemFilter)
    : itemFilter(std::move(itemFilter)), sequenceHook(std::move(sequenceHook))
{
}

void ContentEscapeReader::setContent(std::string text)
{
    content = std::move(text);
    position = 0;
    current = advance();
}

ContentItem ContentEscapeReader::next()
{
    const ContentItem item = current;
    if (item.type != ITEM_NONE)
        current = advance();
    return item;
}

uint32_t ContentEscapeReader::takeRun()
{
    uint32_t count = 1;
    if (currentIsByte) {
        const char byte = content[position - 1];
        for (; position < content.size() && content[position] == byte; ++position)
            ++count;
    }
    current = advance();
    return count;
}

ContentItem ContentEscapeReader::advance()
{
    while (position < content.size()) {
        const bool isByte = content[position] != '\\';
        ContentItem item = isByte ? byteItem(static_cast<unsigned char>(content[position])) : readSequence();
        ++position;
        if (itemFilter)
            itemFilter(item);
        // A sequence without a result leaves no trace: whatever follows is delivered instead.
        if (item.type != ITEM_NONE) {
            currentIsByte = isByte;
            return item;
        }
    }
    return ContentItem{};
}

// Leaves position on the last byte of the sequence.
ContentItem ContentEscapeReader::readSequence()
{
    const char kind = at(++position);
    if (kind == '\\')
        return byteItem('\\');
    if (kind != '<')
        throw illegalEscape(kind);
    ++position;
    const std::string id = scan('>', '(', idUnits, "missed closing '>' after reading 30  characters of id");
    if (content[position] == '>')
        return decide(id, {});
    ++position;
    const std::string parm = scan(')', ')', parmUnits, "missed closing ')' after reading 50  characters of parameters");
    if (at(++position) != '>')
        throw KT_ERROR::bad_content_sequence(
            KT_ERROR::text("missed closing '>' after content escape sequence ", "\\<", id, "(", parm, ")"));
    return decide(id, parm);
}

ContentItem ContentEscapeReader::decide(const std::string& id, const std::string& parm)
{
    if (id == "VT")
        return byteItem(11);
    if (id == "ESC")
        return byteItem(27);
    if (id == "ASC")
        return byteItem(asciiCode(parm));
    ContentItem item{ITEM_NONE, 0};
    if (sequenceHook)
        sequenceHook(id, parm, item);
    return item;
}

// Gathers bytes up to a stop byte, on which position is left. The unit that the last allowed
// byte would use up already fails, so a budget of 30 admits 29 bytes.
std::string ContentEscapeReader::scan(char firstStop, char secondStop, uint32_t units, const char* overrun)
{
    const uint32_t start = position;
    for (char c = at(position); c != firstStop && c != secondStop; c = at(++position))
        if (--units == 0)
            throw KT_ERROR::bad_content_sequence(overrun);
    return content.substr(start, position - start);
}

char ContentEscapeReader::at(uint32_t index) const
{
    if (index >= content.size())
        throw KT_ERROR::bad_content_sequence(
            KT_ERROR::text("reached end of content while parsing escape sequence: ", content));
    return content[index];
}

uint32_t displayLength(const std::string& text)
{
    uint32_t count = 0;
    bool inside = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inside) {
            if (c == '>') {
                inside = false;
                ++count;
            }
        } else if (c != '\\') {
            ++count;
        } else if (i + 1 == text.size()) {
            break;
        } else if (text[++i] == '\\') {
            ++count;
        } else if (text[i] == '<') {
            inside = true;
        } else {
            throw illegalEscape(text[i]);
        }
    }
    return count;
}

std::string toBytes(ContentEscapeReader& reader)
{
    std::string bytes;
    while (reader.hasNext()) {
        const uint32_t value = reader.next().value;
        if (value < 256) {
            bytes.push_back(static_cast<char>(value));
            continue;
        }
        if (((value >> 16) & 0xFF) != 0)
            bytes.push_back(static_cast<char>(value >> 16));
        bytes.push_back(static_cast<char>(value >> 8));
        bytes.push_back(static_cast<char>(value));
    }
    return bytes;
}

std::vector<ContentItem> toTokens(ContentEscapeReader& reader)
{
    std::vector<ContentItem> tokens;
    tokens.reserve(reader.getContent().size());
    while (reader.hasNext())
        tokens.push_back(reader.next());
    return tokens;
}

}  // namespace KT_FMT
