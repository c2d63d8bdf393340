// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Header fields, metadata tree and drawing primitives as bytes.
#include "imagelib/ipc/WireHeader.h"

#include "imagelib/image/QuotedText.h"

namespace morvend::imglib::wire {

namespace {

using nexus::Value;

void putTag(ByteWriter& out, Tag tag) { out.put(static_cast<std::uint8_t>(tag)); }
Tag getTag(ByteReader& in) { return static_cast<Tag>(in.get<std::uint8_t>()); }

void writeItem(ByteWriter& out, std::int64_t value) { out.put(value); }
void writeItem(ByteWriter& out, double value) { out.put(value); }
void writeItem(ByteWriter& out, const std::string& value) { out.text(value); }
void readItem(ByteReader& in, std::int64_t& value) { value = in.get<std::int64_t>(); }
void readItem(ByteReader& in, double& value) { value = in.get<double>(); }
void readItem(ByteReader& in, std::string& value) { value = in.text(); }

void writeValue(ByteWriter& out, const Value& value)
{
    // The alternatives of a value are in the order of the tags.
    putTag(out, static_cast<Tag>(value.index()));
    const auto write = [&]<class T>(const T& held) {
        if constexpr (requires { held.begin(); } && !std::is_same_v<T, std::string>) {
            out.put(static_cast<std::uint32_t>(held.size()));
            for (const auto& item : held)
                writeItem(out, item);
        } else if constexpr (!std::is_same_v<T, std::monostate>) {
            writeItem(out, held);
        }
    };
    std::visit(write, value);
}

template <class T>
T readScalar(ByteReader& in)
{
    T value{};
    readItem(in, value);
    return value;
}

template <class T>
std::vector<T> readItems(ByteReader& in)
{
    std::vector<T> values(in.count(std::is_same_v<T, std::string> ? 4 : 8));
    for (T& value : values)
        readItem(in, value);
    return values;
}

Value readValue(ByteReader& in, Tag tag)
{
    switch (tag) {
    case Tag::Nothing:
        return {};
    case Tag::Int:
        return readScalar<std::int64_t>(in);
    case Tag::Float:
        return readScalar<double>(in);
    case Tag::Text:
        return readScalar<std::string>(in);
    case Tag::Ints:
        return readItems<std::int64_t>(in);
    case Tag::Floats:
        return readItems<double>(in);
    case Tag::Texts:
        return readItems<std::string>(in);
    case Tag::Image:
        break;
    }
    malformed("a value of the unknown type " + std::to_string(int(tag)));
}

void writeTree(ByteWriter& out, const nexus::MBasicNeXusTree& tree)
{
    std::size_t size = tree.nodes().size();
    for (const auto& [path, node] : tree.nodes())
        size += node.attributes.size();
    if (size > MostNodes)
        throw MBadParameterException("Queue: a metadata tree of " + std::to_string(size) +
                                     " nodes and attributes is too large");
    out.put(static_cast<std::uint32_t>(tree.nodes().size()));
    for (const auto& [path, node] : tree.nodes()) {
        out.text(path);
        writeValue(out, node.value);
        out.put(static_cast<std::uint32_t>(node.attributes.size()));
        for (const auto& [name, value] : node.attributes) {
            out.text(name);
            writeValue(out, value);
        }
    }
}

nexus::MBasicNeXusTree readTree(ByteReader& in)
{
    nexus::MBasicNeXusTree tree;
    std::uint32_t left = MostNodes;  // attributes count as nodes
    const auto spend = [&left](std::uint32_t items) {
        if (items > left)
            malformed("a metadata tree of more than " + std::to_string(MostNodes) + " nodes");
        left -= items;
        return items;
    };
    for (auto nodes = spend(in.count(9)); nodes > 0; --nodes) {
        nexus::Node& node = tree.node(in.text());
        node.value = readValue(in, getTag(in));
        for (auto attributes = spend(in.count(5)); attributes > 0; --attributes) {
            Value& attribute = node.attributes[in.text()];
            attribute = readValue(in, getTag(in));
        }
    }
    return tree;
}

void writeField(ByteWriter& out, float value, const std::function<void(const MImage&)>&)
{
    putTag(out, Tag::Float);
    out.put(double(value));
}

void writeField(ByteWriter& out, int value, const std::function<void(const MImage&)>&)
{
    putTag(out, Tag::Int);
    out.put(std::int64_t(value));
}

void writeField(ByteWriter& out, const std::string& value,
                const std::function<void(const MImage&)>&)
{
    putTag(out, Tag::Text);
    out.text(value);
}

void writeField(ByteWriter& out, const MImage& value,
                const std::function<void(const MImage&)>& mask)
{
    putTag(out, Tag::Image);
    mask(value);
}

/// The value of a field of type T, whatever number was received.
template <class T>
T fieldValue(const std::string& name, const Value& value)
{
    if constexpr (std::is_same_v<T, std::string>) {
        if (const auto* text = std::get_if<std::string>(&value))
            return *text;
    } else if constexpr (!std::is_same_v<T, MImage>) {
        if (const auto* real = std::get_if<double>(&value))
            return datatypes::convertPixel<T>(*real);
        if (const auto* integer = std::get_if<std::int64_t>(&value))
            return datatypes::convertPixel<T>(static_cast<double>(*integer));
    }
    malformed("the header field " + quoted(name) + " has a value of a wrong type");
}

void setField(MBasicImageOptionalData<>& header, const std::string& name, const Value& value)
{
#define TARVIK_SET(T, field)                                                                       \
    if (name == #field)                                                                            \
        return header.set_##field(fieldValue<T>(name, value));
    TARVIK_HEADER_FIELDS(TARVIK_SET)
#undef TARVIK_SET
}

}  // namespace

void writeHeader(ByteWriter& out, const MBasicImageOptionalData<>& header,
                 const std::function<void(const MImage&)>& mask)
{
    std::uint32_t fields = 0;
    header.forEachField([&](const char*, const auto& value) { fields += value ? 1U : 0U; });
    out.put(fields);
    header.forEachField([&](const char* name, const auto& value) {
        if (!value)
            return;
        out.text(name);
        writeField(out, *value, mask);
    });
    writeTree(out, header.nexusTree());
}

void readHeader(ByteReader& in, MBasicImageOptionalData<>& header,
                const std::function<MImage()>& mask)
{
    for (auto fields = in.count(5); fields > 0; --fields) {
        const std::string name = in.text();
        const Tag tag = getTag(in);
        if (tag != Tag::Image)
            setField(header, name, readValue(in, tag));
        else if (name != "pixel_mask")
            malformed("the header field " + quoted(name) + " can't be an image");
        else if (header.pixel_mask())
            malformed("a header with two masks");  // a million of them would cost endless copying
        else
            header.set_pixel_mask(mask());
    }
    header.setNexusTree(readTree(in));  // last, since setting fields touches the tree
}

namespace {

/// The numbers of a primitive after its type and colour.
std::vector<double> numbersOf(const MDrawingPrimitive& item)
{
    switch (item.type()) {
    case MDrawingPrimitive::PIXEL: {
        const auto& pixel = static_cast<const MDrawingPixel&>(item);
        return {pixel.x(), pixel.y()};
    }
    case MDrawingPrimitive::LINE: {
        const auto& line = static_cast<const MDrawingLine&>(item);
        return {line.xBegin(), line.yBegin(), line.xEnd(), line.yEnd()};
    }
    case MDrawingPrimitive::STRING: {
        const auto& text = static_cast<const MDrawingString&>(item);
        return {text.x(), text.y()};
    }
    default: {
        const auto& ellipse = static_cast<const MDrawingEllipse&>(item);
        return {ellipse.x(), ellipse.y(), ellipse.rx(), ellipse.ry(), ellipse.rotation()};
    }
    }
}

void readPrimitive(ByteReader& in, MDrawingList<>& list)
{
    const int type = in.get<std::uint8_t>();
    std::uint8_t c[4];
    for (std::uint8_t& each : c)
        each = in.get<std::uint8_t>();
    constexpr std::size_t Numbers[] = {2, 4, 2, 5};
    if (type > MDrawingPrimitive::ELLIPSE)
        malformed("a drawing primitive of the unknown type " + std::to_string(type));
    double v[5] = {};
    for (std::size_t i = 0; i < Numbers[type]; ++i)
        v[i] = in.get<double>();
    switch (type) {
    case MDrawingPrimitive::PIXEL:
        return list.pushBack(MDrawingPixel(v[0], v[1], c[0], c[1], c[2], c[3]));
    case MDrawingPrimitive::LINE:
        return list.pushBack(MDrawingLine(v[0], v[1], v[2], v[3], c[0], c[1], c[2], c[3]));
    case MDrawingPrimitive::STRING:
        return list.pushBack(MDrawingString(v[0], v[1], in.text(), c[0], c[1], c[2], c[3]));
    default:
        return list.pushBack(MDrawingEllipse(v[0], v[1], v[2], v[3], v[4], c[0], c[1], c[2], c[3]));
    }
}

}  // namespace

void writeList(ByteWriter& out, const MDrawingList<>& list)
{
    out.put(static_cast<std::uint32_t>(list.size()));
    for (std::size_t i = 0; i < list.size(); ++i) {
        const MDrawingPrimitive& item = list[i];
        out.put(static_cast<std::uint8_t>(item.type()));
        for (const std::uint8_t colour : {item.red(), item.green(), item.blue(), item.alpha()})
            out.put(colour);
        for (const double number : numbersOf(item))
            out.put(number);
        if (item.type() == MDrawingPrimitive::STRING)
            out.text(static_cast<const MDrawingString&>(item).text());
    }
}

MDrawingList<> readList(ByteReader& in)
{
    MDrawingList<> list;
    for (auto items = in.count(21); items > 0; --items)
        readPrimitive(in, list);
    return list;
}

}  // namespace morvend::imglib::wire
