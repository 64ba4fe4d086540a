#include "DescriptionScan.h"

#include <pugixml.hpp>
#include <zlib.h>

#include <cstring>
#include <stdexcept>

namespace TALVIR::Tools
{
namespace
{
// Of a StructReg only the StructEntry children are features; an IntSwissKnife inside it is part of its address.
void ScanChildren(const pugi::xml_node& parent, std::map<std::string, std::string>& elements, bool entriesOnly = false)
{
    for (const pugi::xml_node& child : parent.children())
    {
        if (child.type() != pugi::node_element)
            continue;
        const std::string element = child.name();
        if (entriesOnly && element != "StructEntry")
            continue;
        if (element == "Group" || element == "StructReg")
        {
            ScanChildren(child, elements, element == "StructReg");
            continue;
        }
        if (ValueKindOfElement(element) == EValueKind::None)
            continue;
        const char* name = child.attribute("Name").value();
        if (*name != '\0')
            elements.emplace(name, element);
    }
}

uint32_t LittleEndian32(const unsigned char* p)
{
    return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) | (static_cast<uint32_t>(p[2]) << 16) |
           (static_cast<uint32_t>(p[3]) << 24);
}

uint16_t LittleEndian16(const unsigned char* p)
{
    return static_cast<uint16_t>(p[0] | (p[1] << 8));
}
} // namespace

std::map<std::string, std::string> ScanValueElements(const std::string& xml)
{
    pugi::xml_document document;
    const pugi::xml_parse_result parsed = document.load_buffer(xml.data(), xml.size(), pugi::parse_default);
    if (!parsed)
        throw std::runtime_error(std::string("XML error at offset ") + std::to_string(parsed.offset) + ": " +
                                 parsed.description());
    std::map<std::string, std::string> elements;
    ScanChildren(document.document_element(), elements);
    return elements;
}

bool LooksLikeZip(const std::string& bytes)
{
    return bytes.size() >= 4 && std::memcmp(bytes.data(), "PK\x03\x04", 4) == 0;
}

// The first local file header: signature, version, flags, method, time, date, crc, sizes, name and extra lengths.
// Archives written with sizes in a trailing data descriptor are not supported by this scan; the engine reads them.
std::string FirstFileOfZip(const std::string& zipBytes)
{
    constexpr size_t kHeaderSize = 30;
    if (!LooksLikeZip(zipBytes) || zipBytes.size() < kHeaderSize)
        throw std::runtime_error("not a ZIP archive");
    const auto* header = reinterpret_cast<const unsigned char*>(zipBytes.data());
    const uint16_t flags = LittleEndian16(header + 6);
    const uint16_t method = LittleEndian16(header + 8);
    const uint32_t compressedSize = LittleEndian32(header + 18);
    const uint32_t size = LittleEndian32(header + 22);
    const size_t dataStart = kHeaderSize + LittleEndian16(header + 26) + LittleEndian16(header + 28);
    if ((flags & 0x08) != 0)
        throw std::runtime_error("ZIP entry sizes in a data descriptor are not supported");
    if (dataStart > zipBytes.size() || compressedSize > zipBytes.size() - dataStart)
        throw std::runtime_error("ZIP entry reaches past the end of the archive");
    const char* data = zipBytes.data() + dataStart;
    if (method == 0)
        return std::string(data, compressedSize);
    if (method != 8)
        throw std::runtime_error("ZIP compression method " + std::to_string(method) + " is not supported");

    std::string out(size, '\0');
    z_stream stream{};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        throw std::runtime_error("cannot start inflating");
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
    stream.avail_in = compressedSize;
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = size;
    const int status = inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
    if (status != Z_STREAM_END || stream.total_out != size)
        throw std::runtime_error("corrupt DEFLATE data in ZIP entry");
    return out;
}
} // namespace TALVIR::Tools
