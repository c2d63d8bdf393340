// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// One function for each kind of step.
#include "tests/fuzz/Hdf5Script.h"

#include "imagelib/codec/ChunkDecoder.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Filters.h"
#include "imagelib/io/formats/hdf5/library/Hdf5Handles.h"

#include <array>
#include <cstring>
#include <iterator>
#include <limits>

namespace tarvik::fuzz {

namespace {

using namespace morvend;
using namespace morvend::imglib::hdf5;

using Words = std::vector<std::string>;
using Extents = std::array<hsize_t, 8>;

/// The words between the bars of a text.
Words split(const std::string& text)
{
    Words words(1);
    for (const char c : text)
        c == '|' ? static_cast<void>(words.emplace_back()) : words.back().push_back(c);
    return words;
}

const Words Names =
    split("entry|data|instrument|detector|data_000001|data_000002|data_000003|detectorSpecific|"
          "pixel_mask|pixel_mask_2|nimages|ntrigger|beam|sample|incident_wavelength|"
          "incident_wavelength_weights|x_pixel_size|y_pixel_size|beam_center_x|detector_distance|"
          "count_time|transformations|omega|omega_end|goniometer|phi|phi_increment_set|depends_on|"
          "geometry|description|start_time|saturation_value|sensor_thickness|module|"
          "fast_pixel_direction|measurement|exchange|image|threshold_energy|photon_energy");

const Words Paths =
    split("/entry/data/data|/entry/data|/entry|/|/entry/data/data_000001|/entry/data/data_000002|.|"
          "data|/data|/entry/instrument/detector|/entry/sample/transformations/omega|../data|"
          "/nowhere|/entry/instrument|/entry/instrument/detector/detectorSpecific/pixel_mask|"
          "entry/data/data");

const Words Files =
    split("s_master.h5|s_data_000001.h5|s_data_000002.h5|other.h5|missing.h5|.||s_data_%b.h5|"
          "folder|./s_master.h5");

const Words Attributes =
    split("NX_class|signal|default|units|image_nr_low|image_nr_high|depends_on|transformation_type|"
          "vector|offset|offset_units|axes");

const Words Texts =
    split("NXentry|NXdata|NXinstrument|NXdetector|data|m|mm|um|s|ms|eV|keV|deg|rad|A|nm|rotation|"
          "translation|/entry/sample/transformations/omega|omega|transformations/omega|.||entry|"
          "/entry|2026-01-02T03:04:05|\x01\xff");

const char* choice(const Words& list, Input& script)
{
    return list[script.byte() % list.size()].c_str();
}

hsize_t extent(Input& script)
{
    constexpr hsize_t Small[] = {1, 2, 3, 5, 8, 16, 0, 1, 33, 7};
    constexpr hsize_t Large[] = {257, 4096,      70000,     1 << 20,  1u << 31,
                                 ~0u, 1ul << 32, 3ul << 33, 1ul << 62};
    // Most arrays are small: large ones cost time and tell little.
    const unsigned value = script.byte();
    const unsigned place = value < 224 ? value % 10 : value % 19;
    return place < 10 ? Small[place] : Large[place - 10];
}

class Script {
public:
    Script(const std::string& folder, Input& input)
        : _folder(folder)
        , _in(input)
    {
        _turnTo(0);
    }

    void run()
    {
        constexpr int MostSteps = 60;
        for (int i = 0; i < MostSteps && !_in.empty(); ++i)
            _step();
        takeErrorText();
    }

private:
    void _step()
    {
        constexpr void (Script::*Steps[])() = {&Script::_turn,   &Script::_group,   &Script::_group,
                                               &Script::_array,  &Script::_array,   &Script::_chunk,
                                               &Script::_text,   &Script::_numbers, &Script::_link,
                                               &Script::_virtual};
        (this->*Steps[_in.byte() % std::size(Steps)])();
    }

    void _turn() { _turnTo(_in.byte() % std::size(Hdf5Files)); }

    void _turnTo(std::size_t file)
    {
        if (!_files[file]) {
            const Properties access = unlockedAccess();
            _files[file] = File(H5Fcreate((_folder + "/" + Hdf5Files[file]).c_str(), H5F_ACC_TRUNC,
                                          H5P_DEFAULT, access.id()));
        }
        _objects.clear();
        _objects.emplace_back(H5Oopen(_files[file].id(), "/", H5P_DEFAULT));
        _last = Dataset();
    }

    hid_t _parent() { return _objects[_in.byte() % _objects.size()].id(); }

    void _keep(Object object)
    {
        constexpr std::size_t MostKept = 16;
        if (object && _objects.size() < MostKept)
            _objects.push_back(std::move(object));
    }

    void _group()
    {
        const hid_t parent = _parent();
        const char* name = choice(Names, _in);
        const Group group(H5Gcreate2(parent, name, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
        _keep(Object(H5Oopen(parent, name, H5P_DEFAULT)));
    }

    Datatype _type()
    {
        const hid_t numbers[] = {H5T_STD_U16LE, H5T_STD_U32LE,  H5T_STD_I32LE, H5T_STD_U8LE,
                                 H5T_STD_I16BE, H5T_STD_U64BE,  H5T_STD_I8LE,  H5T_IEEE_F32LE,
                                 H5T_STD_I64LE, H5T_IEEE_F64BE, H5T_STD_B16LE, H5T_STD_B64BE,
                                 H5T_IEEE_F32BE};
        const unsigned kind = _in.byte();
        const hid_t number = numbers[kind % std::size(numbers)];
        if (kind < 200)
            return Datatype(H5Tcopy(number));
        const hsize_t two = 2;
        switch (kind % 8) {
        case 0:
            return Datatype(H5Tenum_create(number));
        case 1:
            return Datatype(H5Tarray_create2(number, 1, &two));
        case 2: {
            Datatype pair(H5Tcreate(H5T_COMPOUND, 16));
            H5Tinsert(pair.id(), "r", 0, number);
            H5Tinsert(pair.id(), "i", 8, number);
            return pair;
        }
        case 3:
            return Datatype(H5Tcreate(H5T_OPAQUE, 1 + _in.byte() % 20));
        case 4:
            return Datatype(H5Tcopy(H5T_STD_REF_OBJ));
        case 5:
            return Datatype(H5Tvlen_create(number));
        case 6: {
            Datatype text(H5Tcopy(H5T_C_S1));
            H5Tset_size(text.id(), _in.byte() % 2 ? H5T_VARIABLE : 1 + _in.byte());
            return text;
        }
        default: {  // a number with bits left out
            Datatype narrow(H5Tcopy(H5T_STD_U32LE));
            H5Tset_precision(narrow.id(), 1 + _in.byte() % 32);
            H5Tset_offset(narrow.id(), _in.byte() % 8);
            return narrow;
        }
        }
    }

    void _filters(hid_t creation, std::size_t elementSize)
    {
        const unsigned kind = _in.byte();
        if (kind & 1)
            H5Pset_shuffle(creation);
        if (kind & 2)
            H5Pset_fletcher32(creation);
        switch (kind >> 2 & 7) {
        case 1:
            H5Pset_deflate(creation, 1);
            break;
        case 2:
            H5Pset_filter(creation, codec::Lz4Filter, H5Z_FLAG_OPTIONAL, 0, nullptr);
            break;
        case 3:
        case 4: {
            const unsigned size = kind & 64 ? _in.byte() : static_cast<unsigned>(elementSize);
            const unsigned values[] = {0, 3, size, _in.byte() / 8 * 8, kind & 128 ? 2U : 0U};
            H5Pset_filter(creation, codec::BitshuffleFilter, H5Z_FLAG_OPTIONAL, 5, values);
            break;
        }
        case 5:
            H5Pset_nbit(creation);
            break;
        default:
            break;
        }
    }

    void _layout(hid_t creation, std::size_t rank, std::size_t elementSize)
    {
        const unsigned kind = _in.byte();
        Extents chunk = {};
        for (std::size_t i = 0; i < rank; ++i)
            chunk[i] = kind & 1 ? extent(_in) : 0;
        _chunkElements = 1;
        if (kind & 1) {
            for (std::size_t i = 0; i < rank && _chunkElements <= 1 << 20; ++i)
                _chunkElements *= chunk[i];
            H5Pset_chunk(creation, static_cast<int>(rank), chunk.data());
            if (kind & 2)
                _filters(creation, elementSize);
        } else if (kind & 4) {
            H5Pset_layout(creation, H5D_COMPACT);
        } else if ((kind & 0x18) == 0x18) {
            H5Pset_external(creation, (_folder + "/raw").c_str(), 0, H5F_UNLIMITED);
        }
        if (kind & 32) {
            const long long fill = _in.byte() - 3;
            H5Pset_fill_value(creation, H5T_NATIVE_LLONG, &fill);
        }
    }

    Dataspace _space(std::size_t rank, Extents& extents)
    {
        Extents most;
        const bool grows = _in.byte() % 4 == 0;
        for (std::size_t i = 0; i < rank; ++i) {
            extents[i] = extent(_in);
            most[i] = grows && i == 0 ? H5S_UNLIMITED : extents[i];
        }
        return Dataspace(H5Screate_simple(static_cast<int>(rank), extents.data(), most.data()));
    }

    void _array()
    {
        const hid_t parent = _parent();
        const char* name = choice(Names, _in);
        const Datatype type = _type();
        constexpr std::size_t Ranks[] = {3, 2, 3, 0, 1, 4, 3, 5};
        const std::size_t rank = Ranks[_in.byte() % 8];
        Extents extents = {};
        const Dataspace space = _space(rank, extents);
        const Properties creation(H5Pcreate(H5P_DATASET_CREATE));
        _layout(creation.id(), rank, H5Tget_size(type.id()));
        H5Pset_fill_time(creation.id(), H5D_FILL_TIME_IFSET);
        H5Pset_alloc_time(creation.id(), H5D_ALLOC_TIME_INCR);
        if (H5Pget_layout(creation.id()) == H5D_CONTIGUOUS)
            H5Pset_alloc_time(creation.id(), H5D_ALLOC_TIME_LATE);
        _last = Dataset(H5Dcreate2(parent, name, type.id(), space.id(), H5P_DEFAULT, creation.id(),
                                   H5P_DEFAULT));
        _lastRank = rank;
        _fill(type.id(), space.id());
        _keep(Object(H5Oopen(parent, name, H5P_DEFAULT)));
    }

    /// Writes a small array of numbers or texts.
    void _fill(hid_t type, hid_t space)
    {
        const hssize_t count = H5Sget_simple_extent_npoints(space);
        const H5T_class_t kind = H5Tget_class(type);
        const bool number = kind == H5T_INTEGER || kind == H5T_FLOAT || kind == H5T_BITFIELD;
        if (!_last || count <= 0 || count > 4096 || _chunkElements > 1 << 20)
            return;
        if (kind == H5T_STRING && H5Tis_variable_str(type) > 0) {
            const std::vector<const char*> texts(static_cast<std::size_t>(count),
                                                 choice(Texts, _in));
            H5Dwrite(_last.id(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, texts.data());
        } else if (number || kind == H5T_STRING) {
            std::vector<unsigned char> bytes(static_cast<std::size_t>(count) * H5Tget_size(type));
            const unsigned seed = _in.word();
            for (std::size_t i = 0; i < bytes.size(); ++i)
                bytes[i] = static_cast<unsigned char>(i * i * (seed >> 8) + seed);
            H5Dwrite(_last.id(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data());
        }
    }

    /// A chunk of any content and size.
    void _chunk()
    {
        Extents offset = {};
        Extents chunk = {1, 1, 1, 1, 1, 1, 1, 1};
        const unsigned mask = _in.byte() & 3;
        const Properties creation(_last ? H5Dget_create_plist(_last.id()) : H5I_INVALID_HID);
        if (!creation || H5Pget_chunk(creation.id(), 8, chunk.data()) < 0 || _lastRank < 3 ||
            _undoneByLibrary(creation.id()))
            return;
        // The library looks for the chunks of an array without elements where none are: a crash.
        const Dataspace space(H5Dget_space(_last.id()));
        if (H5Sget_simple_extent_npoints(space.id()) <= 0)
            return;
        for (std::size_t i = 0; i < _lastRank; ++i)
            offset[i] = _in.byte() % 4 * chunk[i];
        std::vector<std::byte> bytes(1 + _in.byte());
        for (std::byte& each : bytes)
            each = static_cast<std::byte>(_in.byte());
        H5Dwrite_chunk(_last.id(), H5P_DEFAULT, mask, offset.data(), bytes.size(), bytes.data());
    }

    /// Does a filter stay with the library, which ends in a crash where a chunk is shorter than a
    /// checksum? Small arrays of fewer dimensions are left to it, too.
    static bool _undoneByLibrary(hid_t creation)
    {
        const auto has = [creation](H5Z_filter_t filter) {
            unsigned flags = 0;
            std::size_t values = 0;
            return H5Pget_filter_by_id2(creation, filter, &flags, &values, nullptr, 0, nullptr,
                                        nullptr) >= 0;
        };
        return has(H5Z_FILTER_FLETCHER32) || has(H5Z_FILTER_NBIT);
    }

    static void _attribute(hid_t target, const char* name, hid_t type, hid_t space,
                           const void* value)
    {
        const Attribute made(H5Acreate2(target, name, type, space, H5P_DEFAULT, H5P_DEFAULT));
        H5Awrite(made.id(), type, value);
    }

    void _text()
    {
        const hid_t target = _parent();
        const char* name = choice(Attributes, _in);
        const char* text = choice(Texts, _in);
        const Dataspace space(H5Screate(H5S_SCALAR));
        const Datatype type(H5Tcopy(H5T_C_S1));
        const bool variable = _in.byte() % 2 == 1;
        H5Tset_size(type.id(), variable ? H5T_VARIABLE : std::strlen(text) + 1);
        _attribute(target, name, type.id(), space.id(),
                   variable ? static_cast<const void*>(&text) : text);
    }

    void _numbers()
    {
        const hid_t target = _parent();
        const char* name = choice(Attributes, _in);
        const hsize_t count = 1 + _in.byte() % 4;
        const Dataspace space(count == 1 ? H5Screate(H5S_SCALAR)
                                         : H5Screate_simple(1, &count, nullptr));
        const bool whole = _in.byte() % 2 == 0;
        const hid_t type = whole ? H5T_NATIVE_LLONG : H5T_NATIVE_DOUBLE;
        constexpr double Values[] = {
            0, 1, -1, 2, 1e-3, 1e30, -1e300, 9.3e18, std::numeric_limits<double>::infinity()};
        std::array<double, 4> reals;
        std::array<long long, 4> integers;
        for (std::size_t i = 0; i < 4; ++i) {
            integers[i] = static_cast<long long>(_in.byte()) - 2;
            if (integers[i] > 250)
                integers[i] <<= 55;
            reals[i] = Values[static_cast<std::size_t>(integers[i] + 2) % std::size(Values)];
        }
        _attribute(target, name, type, space.id(),
                   whole ? static_cast<const void*>(integers.data()) : reals.data());
    }

    void _link()
    {
        const hid_t parent = _parent();
        const char* name = choice(Names, _in);
        const char* path = choice(Paths, _in);
        switch (_in.byte() % 3) {
        case 0:
            H5Lcreate_soft(path, parent, name, H5P_DEFAULT, H5P_DEFAULT);
            return;
        case 1:
            H5Lcreate_external(choice(Files, _in), path, parent, name, H5P_DEFAULT, H5P_DEFAULT);
            return;
        default:
            H5Olink(_parent(), parent, name, H5P_DEFAULT, H5P_DEFAULT);
        }
    }

    void _select(hid_t space, std::size_t rank, const Extents& extents)
    {
        Extents start = {};
        Extents stride = {};
        Extents count = {};
        Extents block = {};
        for (std::size_t i = 0; i < rank; ++i) {
            const unsigned kind = _in.byte();
            start[i] = kind & 1 ? _in.byte() % 4 : 0;
            block[i] = kind & 2 ? 1 + _in.byte() % 3 : 1;
            stride[i] = block[i] + (kind & 4 ? _in.byte() % 3 : 0);
            count[i] = kind & 8 ? H5S_UNLIMITED : kind & 16 ? 1 + _in.byte() % 5 : extents[i];
        }
        H5Sselect_hyperslab(space, H5S_SELECT_SET, start.data(), stride.data(), count.data(),
                            block.data());
    }

    void _virtual()
    {
        const hid_t parent = _parent();
        const char* name = choice(Names, _in);
        constexpr std::size_t Ranks[] = {3, 2, 3, 4};
        const std::size_t rank = Ranks[_in.byte() % 4];
        Extents extents = {};
        const Dataspace space = _space(rank, extents);
        const Properties creation(H5Pcreate(H5P_DATASET_CREATE));
        for (unsigned maps = 1 + _in.byte() % 3; maps > 0; --maps) {
            const Dataspace target(H5Scopy(space.id()));
            _select(target.id(), rank, extents);
            const char* file = choice(Files, _in);
            const char* path = choice(Paths, _in);
            const std::size_t sourceRank = Ranks[_in.byte() % 4];
            Extents sourceExtents = {};
            const Dataspace source = _space(sourceRank, sourceExtents);
            if (_in.byte() % 2)
                _select(source.id(), sourceRank, sourceExtents);
            H5Pset_virtual(creation.id(), target.id(), file, path, source.id());
        }
        const Dataset made(H5Dcreate2(parent, name, H5T_STD_U16LE, space.id(), H5P_DEFAULT,
                                      creation.id(), H5P_DEFAULT));
        _keep(Object(H5Oopen(parent, name, H5P_DEFAULT)));
    }

    const std::string& _folder;
    Input& _in;
    std::array<File, std::size(Hdf5Files)> _files;
    std::vector<Object> _objects;  // of the file that is written
    Dataset _last;
    std::size_t _lastRank = 0;
    hsize_t _chunkElements = 0;  // of that one; the library takes memory for a whole chunk
};

}  // namespace

void writeHdf5Files(const std::string& folder, Input& script)
{
    silenceErrors();
    registerFilters();
    Script(folder, script).run();
}

}  // namespace tarvik::fuzz
