// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Comparing headers field by field.
#include "imagelib/io/process/HeaderChange.h"

#include <utility>

namespace morvend::imglib {

namespace {

using Header = HeaderChange::Header;

template <class T>
bool same(const boost::optional<T>& left, const boost::optional<T>& right)
{
    return left == right;
}

/// A mask is the same only if it shares the same pixel memory: comparing them would cost too much.
bool same(const boost::optional<MImage>& left, const boost::optional<MImage>& right)
{
    return left.has_value() == right.has_value() &&
           (!left || (left->identity() == right->identity() && left->width() == right->width()));
}

/// The fields that differ.
Header difference(const Header& from, const Header& to)
{
    Header changed;
#define TARVIK_FIELD(T, name)                                                                      \
    if (!same(from.name(), to.name()))                                                             \
        changed.set_##name(to.name());
    TARVIK_HEADER_FIELDS(TARVIK_FIELD)
#undef TARVIK_FIELD
    return changed;
}

/// True if `to` lacks a field that `from` has. That can't be sent as a change.
bool lacksField(const Header& from, const Header& to)
{
    bool lacks = false;
#define TARVIK_FIELD(T, name) lacks = lacks || (from.name() && !to.name());
    TARVIK_HEADER_FIELDS(TARVIK_FIELD)
#undef TARVIK_FIELD
    return lacks;
}

}  // namespace

HeaderForm HeaderChange::shorten(Header& header)
{
    HeaderForm form = HeaderForm::Whole;
    Header shortened = header;
    if (_any && !lacksField(_last, header)) {
        shortened = difference(_last, header);
        form = HeaderForm::SameTree;
        if (!header.sharesNexusTree(_last)) {
            shortened.shareNexusTree(header);
            form = HeaderForm::Change;
        }
    }
    _last = std::exchange(header, std::move(shortened));
    _any = true;
    return form;
}

void HeaderChange::complete(Header& header, HeaderForm form)
{
    if (form != HeaderForm::Whole) {
        Header whole = _last;
        header.override(whole);
        // Setting a wavelength has changed the tree, which should stay as in the file.
        whole.shareNexusTree(form == HeaderForm::SameTree ? _last : header);
        header = std::move(whole);
    }
    _last = header;
}

}  // namespace morvend::imglib
