// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One visitor turns each kind of value into an HDF5 type, a shape and its bytes.
#include "imagelib/io/formats/hdf5/write/TreeOutput.h"

#include <algorithm>
#include <functional>
#include <type_traits>

namespace morvend::imglib::hdf5 {

namespace {

using nexus::Value;

/// An attribute holds less than 64 KiB, but a text of variable length is stored outside it.
constexpr std::size_t LongestFixedText = 32 << 10;

template <class T>
hid_t numberType()
{
    if constexpr (std::is_same_v<T, double>)
        return H5T_NATIVE_DOUBLE;
    else
        return H5T_NATIVE_INT64;
}

Datatype textType(std::size_t size, const std::string& path)
{
    Datatype type(H5Tcopy(H5T_C_S1), "cannot make a text type", path);
    check(H5Tset_size(type.id(), size), "cannot make a text type", path);
    check(H5Tset_cset(type.id(), H5T_CSET_UTF8), "cannot make a text type", path);
    return type;
}

Dataspace shape(std::size_t count, const std::string& path)
{
    const hsize_t extent = count;
    return Dataspace(H5Screate_simple(1, &extent, nullptr), "cannot make a shape", path);
}

Dataspace scalar(const std::string& path)
{
    return Dataspace(H5Screate(H5S_SCALAR), "cannot make a shape", path);
}

/// Receives type, shape and bytes of one value.
using Store = std::function<void(hid_t type, hid_t space, const void* bytes)>;

/// Hands a value to `store`; false for a group, which has no value.
bool withValue(const Value& value, const std::string& path, const Store& store)
{
    return std::visit(
        [&]<class T>(const T& v) {
            if constexpr (std::is_same_v<T, std::monostate>) {
                return false;
            } else if constexpr (std::is_arithmetic_v<T>) {
                store(numberType<T>(), scalar(path).id(), &v);
            } else if constexpr (std::is_same_v<T, std::string>) {
                const char* const text = v.c_str();
                const bool fixed = v.size() <= LongestFixedText;
                store(textType(fixed ? v.size() + 1 : H5T_VARIABLE, path).id(), scalar(path).id(),
                      fixed ? static_cast<const void*>(text) : &text);
            } else if constexpr (std::is_same_v<T, std::vector<std::string>>) {
                std::vector<const char*> texts(v.size());
                std::transform(v.begin(), v.end(), texts.begin(),
                               [](const std::string& text) { return text.c_str(); });
                store(textType(H5T_VARIABLE, path).id(), shape(v.size(), path).id(), texts.data());
            } else {
                store(numberType<typename T::value_type>(), shape(v.size(), path).id(), v.data());
            }
            return true;
        },
        value);
}

bool isGroup(const nexus::Node& node) { return std::holds_alternative<std::monostate>(node.value); }

/// True if a node above this one holds a value.
bool belowValue(const nexus::MBasicNeXusTree& tree, const std::string& name)
{
    for (std::size_t slash = name.find('/', 1); slash != std::string::npos;
         slash = name.find('/', slash + 1)) {
        const nexus::Node* above = tree.find(name.substr(0, slash));
        if (above && !isGroup(*above))
            return true;
    }
    return false;
}

bool writable(const std::string& name)
{
    return name.size() > 1 && name.front() == '/' && name.back() != '/' &&
           name.find("//") == std::string::npos && name.find("/./") == std::string::npos &&
           !name.ends_with("/.") && name.find('\0') == std::string::npos;
}

}  // namespace

Properties untimedDataset(const std::string& path)
{
    Properties creation(H5Pcreate(H5P_DATASET_CREATE), "cannot make properties", path);
    check(H5Pset_obj_track_times(creation.id(), false), "cannot switch off times", path);
    return creation;
}

TreeOutput::TreeOutput(hid_t file, std::string path)
    : _file(file)
    , _path(std::move(path))
{}

void TreeOutput::write(const nexus::MBasicNeXusTree& tree)
{
    for (const auto& [name, node] : tree.nodes()) {
        if (!writable(name) || belowValue(tree, name))
            continue;
        if (!isGroup(node)) {
            _dataset(name, node);
            continue;
        }
        group(name);
        const Object object(H5Oopen(_file, name.c_str(), H5P_DEFAULT), "cannot open " + name,
                            _path);
        for (const auto& [key, value] : node.attributes)
            attribute(object.id(), key, value);
    }
}

void TreeOutput::group(const std::string& name)
{
    for (std::size_t slash = name.find('/', 1);; slash = name.find('/', slash + 1)) {
        const std::string above = name.substr(0, slash);
        if (H5Lexists(_file, above.c_str(), H5P_DEFAULT) <= 0)
            Group(H5Gcreate2(_file, above.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                  "cannot make group " + above, _path);
        if (slash == std::string::npos)
            return;
    }
}

void TreeOutput::attribute(hid_t object, const std::string& name, const nexus::Value& value)
{
    withValue(value, _path, [&](hid_t type, hid_t space, const void* bytes) {
        if (H5Aexists(object, name.c_str()) > 0)
            check(H5Adelete(object, name.c_str()), "cannot replace attribute " + name, _path);
        const Attribute target(
            H5Acreate2(object, name.c_str(), type, space, H5P_DEFAULT, H5P_DEFAULT),
            "cannot make attribute " + name, _path);
        check(H5Awrite(target.id(), type, bytes), "cannot write attribute " + name, _path);
    });
}

void TreeOutput::_dataset(const std::string& name, const nexus::Node& node)
{
    if (const std::size_t slash = name.rfind('/'); slash > 0)
        group(name.substr(0, slash));
    withValue(node.value, _path, [&](hid_t type, hid_t space, const void* bytes) {
        const Properties creation = untimedDataset(_path);
        const Dataset target(
            H5Dcreate2(_file, name.c_str(), type, space, H5P_DEFAULT, creation.id(), H5P_DEFAULT),
            "cannot make " + name, _path);
        check(H5Dwrite(target.id(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes),
              "cannot write " + name, _path);
        for (const auto& [key, value] : node.attributes)
            attribute(target.id(), key, value);
    });
}

}  // namespace morvend::imglib::hdf5
