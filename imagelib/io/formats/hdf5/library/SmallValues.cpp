// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One reading routine for data sets and attributes, which differ only in the call.
#include "imagelib/io/formats/hdf5/library/SmallValues.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <new>

namespace morvend::imglib::hdf5 {

using nexus::Value;

namespace {

constexpr std::size_t MostTextBytes = std::size_t(1) << 20;
/// The library reads all texts of an attribute before their length can be known.
constexpr std::size_t MostAttributeTexts = 64;
constexpr unsigned MostAttributes = 256;

/// What differs between a data set and an attribute.
struct Reader {
    /// Reads all elements, as values of a type in memory.
    std::function<herr_t(hid_t memoryType, void* target, hid_t transfer)> read;
    /// True if the properties of the transfer matter.
    bool transfers = false;
};

/// Where the library puts texts of variable length: no more of them than fit the limit.
class TextMemory {
public:
    TextMemory()
        : _transfer(H5Pcreate(H5P_DATASET_XFER))
    {
        H5Pset_vlen_mem_manager(
            _transfer.id(),
            [](std::size_t size, void* self) {
                return static_cast<TextMemory*>(self)->_allocate(size);
            },
            this, [](void*, void*) {}, this);  // all is freed at once, with this object
    }
    TextMemory(const TextMemory&) = delete;
    TextMemory& operator=(const TextMemory&) = delete;
    hid_t transfer() const { return _transfer.id(); }

private:
    void* _allocate(std::size_t size) noexcept
    {
        // A little more than the limit, for the NULs of the texts.
        if (size > 2 * MostTextBytes - _used)
            return nullptr;
        _used += size;
        try {
            return _texts.emplace_back(std::make_unique<char[]>(size)).get();
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
    }

    Properties _transfer;
    std::size_t _used = 0;
    std::vector<std::unique_ptr<char[]>> _texts;
};

template <class T>
Value scalarOrArray(std::vector<T> values)
{
    if (values.size() == 1)
        return std::move(values.front());
    return values;
}

template <class T>
std::optional<Value> readNumbers(hid_t memoryType, std::size_t count, const Reader& reader)
{
    std::vector<T> values(count);
    if (reader.read(memoryType, values.data(), H5P_DEFAULT) < 0)
        return std::nullopt;
    return scalarOrArray(std::move(values));
}

/// Cut at the first NUL, and without the trailing blanks of space-padded texts.
std::string cleaned(const char* text, std::size_t most)
{
    std::string result(text, strnlen(text, most));
    result.erase(result.find_last_not_of(" \r\n\t") + 1);
    return result;
}

std::optional<Value> readFixedTexts(hid_t type, std::size_t count, const Reader& reader)
{
    const std::size_t size = H5Tget_size(type);
    if (size == 0 || size > MostTextBytes || count * size > MostTextBytes)
        return std::nullopt;
    std::vector<char> bytes(count * size);
    if (reader.read(type, bytes.data(), H5P_DEFAULT) < 0)
        return std::nullopt;
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < count; ++i)
        texts.push_back(cleaned(bytes.data() + i * size, size));
    return scalarOrArray(std::move(texts));
}

std::optional<Value> readVariableTexts(hid_t type, hid_t space, std::size_t count,
                                       const Reader& reader)
{
    if (!reader.transfers && count > MostAttributeTexts)
        return std::nullopt;
    const TextMemory memory;
    std::vector<char*> pointers(count, nullptr);
    const bool good = reader.read(type, pointers.data(), memory.transfer()) >= 0;
    std::vector<std::string> texts;
    std::size_t bytes = 0;
    for (const char* each : pointers) {
        texts.push_back(each && good ? cleaned(each, MostTextBytes) : std::string());
        bytes += texts.back().size();
    }
    if (!reader.transfers)
        H5Dvlen_reclaim(type, space, H5P_DEFAULT, pointers.data());
    if (!good || bytes > MostTextBytes)
        return std::nullopt;
    return scalarOrArray(std::move(texts));
}

std::optional<Value> readValue(hid_t type, hid_t space, std::size_t most, const Reader& reader)
{
    const auto shape = extents(space);
    if (!shape)
        return std::nullopt;
    hsize_t count = 1;
    for (const hsize_t extent : *shape) {
        if (extent == 0 || extent > most)
            return std::nullopt;
        count *= extent;
        if (count > most)
            return std::nullopt;
    }
    switch (H5Tget_class(type)) {
    case H5T_INTEGER:
    case H5T_BITFIELD:
        return readNumbers<std::int64_t>(H5T_NATIVE_INT64, count, reader);
    case H5T_ENUM: {
        const Datatype base(H5Tget_super(type));
        const std::size_t size = H5Tget_size(type);
        if (size > sizeof(std::int64_t))
            return std::nullopt;
        // Enumerations convert only to their own kind: read as such, then taken as numbers.
        std::vector<std::int64_t> values(count);
        if (reader.read(type, values.data(), H5P_DEFAULT) < 0 ||
            H5Tconvert(base.id(), H5T_NATIVE_INT64, count, values.data(), nullptr, H5P_DEFAULT) < 0)
            return std::nullopt;
        return scalarOrArray(std::move(values));
    }
    case H5T_FLOAT:
        return readNumbers<double>(H5T_NATIVE_DOUBLE, count, reader);
    case H5T_STRING:
        return H5Tis_variable_str(type) > 0 ? readVariableTexts(type, space, count, reader)
                                            : readFixedTexts(type, count, reader);
    default:
        return std::nullopt;
    }
}

}  // namespace

std::optional<std::vector<hsize_t>> extents(hid_t space)
{
    const int rank = H5Sget_simple_extent_ndims(space);
    if (rank < 0 || H5Sget_simple_extent_type(space) == H5S_NULL)
        return std::nullopt;
    std::vector<hsize_t> shape(static_cast<std::size_t>(rank));
    if (rank > 0 && H5Sget_simple_extent_dims(space, shape.data(), nullptr) < 0)
        return std::nullopt;
    return shape;
}

std::optional<std::vector<hsize_t>> datasetExtents(hid_t dataset)
{
    const Dataspace space(H5Dget_space(dataset));
    return extents(space.id());
}

namespace {

/// True if the chunks of a data set are small: the library allocates a whole one, which may be up
/// to 4 GiB for an array of a single value.
bool hasSmallChunks(hid_t dataset, hid_t type)
{
    constexpr hsize_t MostBytes = hsize_t(64) << 20;
    const Properties creation(H5Dget_create_plist(dataset));
    if (H5Pget_layout(creation.id()) != H5D_CHUNKED)
        return true;
    hsize_t extents[H5S_MAX_RANK] = {};
    const int rank = H5Pget_chunk(creation.id(), H5S_MAX_RANK, extents);
    hsize_t bytes = H5Tget_size(type);
    for (int i = 0; i < rank && bytes <= MostBytes; ++i)
        bytes *= extents[i];  // below 2^32 each
    return rank > 0 && bytes <= MostBytes;
}

}  // namespace

std::optional<Value> readDataset(hid_t dataset, std::size_t most)
{
    const Datatype type(H5Dget_type(dataset));
    if (!hasSmallChunks(dataset, type.id()))
        return std::nullopt;
    const Dataspace space(H5Dget_space(dataset));
    const Reader reader{[&](hid_t memory, void* target, hid_t transfer) {
                            return H5Dread(dataset, memory, H5S_ALL, H5S_ALL, transfer, target);
                        },
                        true};
    auto value = readValue(type.id(), space.id(), most, reader);
    takeErrorText();
    return value;
}

std::optional<Value> readAttribute(hid_t object, const char* name)
{
    if (H5Aexists(object, name) <= 0)
        return std::nullopt;
    const Attribute attribute(H5Aopen(object, name, H5P_DEFAULT));
    const Datatype type(H5Aget_type(attribute.id()));
    const Dataspace space(H5Aget_space(attribute.id()));
    const Reader reader{
        [&](hid_t memory, void* target, hid_t) { return H5Aread(attribute.id(), memory, target); },
        false};
    auto value = readValue(type.id(), space.id(), MostTreeElements, reader);
    takeErrorText();
    return value;
}

std::string textAttribute(hid_t object, const char* name)
{
    const auto value = readAttribute(object, name);
    const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text ? *text : std::string();
}

std::map<std::string, Value> readAttributes(hid_t object)
{
    struct Names {
        std::vector<std::string> list;
    } names;
    H5Aiterate2(
        object, H5_INDEX_NAME, H5_ITER_NATIVE, nullptr,
        [](hid_t, const char* name, const H5A_info_t*, void* target) -> herr_t {
            auto& list = static_cast<Names*>(target)->list;
            list.emplace_back(name);
            return list.size() >= MostAttributes;
        },
        &names);
    std::map<std::string, Value> attributes;
    for (const std::string& name : names.list)
        if (auto value = readAttribute(object, name.c_str()))
            attributes.emplace(name, std::move(*value));
    return attributes;
}

}  // namespace morvend::imglib::hdf5
