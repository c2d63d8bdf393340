// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// MColorTable: each table and its inverse are made at first use.
#include "imagelib/display/MColorTable.h"

#include "imagelib/display/tables/ColorTableData.h"
#include "imagelib/image/Assert.h"

#include <bit>

namespace morvend::imglib {

namespace {

std::vector<unsigned char> reversed(const std::vector<unsigned char>& entries)
{
    std::vector<unsigned char> result;
    result.reserve(entries.size());
    for (std::size_t i = entries.size(); i >= 4; i -= 4)
        result.insert(result.end(), &entries[i - 4], &entries[i - 4] + 4);
    return result;
}

}  // namespace

/// A table and its inverse, which point at each other.
struct MColorTable::Family {
    explicit Family(const ColorTableData& data)
        : table(data, false)
        , inverse(data, true)
    {
        table._other = &inverse;
        inverse._other = &table;
    }
    MColorTable table;
    MColorTable inverse;
};

MColorTable::MColorTable(const ColorTableData& data, bool inverse)
    : _identifier(data.identifier)
    , _linear(inverse ? reversed(data.linear) : data.linear)
    , _logarithmic(inverse ? reversed(data.logarithmic) : data.logarithmic)
    , _saturated(0xff000000U | data.saturated)
    , _defective(0xff000000U | data.defective)
    , _inverse(inverse)
{
    assert(std::has_single_bit(linDataSize()));
    assert(logDataSize() == 0 || std::has_single_bit(logDataSize()));
}

const MColorTable* MColorTable::hdr()
{
    static const Family family(hdrTable());
    return &family.table;
}

const MColorTable* MColorTable::grey()
{
    static const Family family(greyTable());
    return &family.table;
}

const MColorTable* MColorTable::heat()
{
    static const Family family(heatTable());
    return &family.table;
}

const MColorTable* MColorTable::rainbow()
{
    static const Family family(rainbowTable());
    return &family.table;
}

const MColorTable* MColorTable::viridis()
{
    static const Family family(viridisTable());
    return &family.table;
}

const MColorTable* MColorTable::cividis()
{
    static const Family family(cividisTable());
    return &family.table;
}

}  // namespace morvend::imglib
