// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The header of optional fields and its metadata tree.
#include "imagelib/image/MImage.h"

#include <boost/optional/optional_io.hpp>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace morvend;
using imglib::MImage;
using Header = imglib::MBasicImageOptionalData<>;

TEST(Header, OverrideCopiesSetFieldsOnlyAndClearsClear)
{
    Header target;
    target.set_wavelength(1.5f);
    target.set_description("kept");
    Header().override(target);
    EXPECT_EQ(target.wavelength(), 1.5f);

    Header edits;
    edits.set_wavelength(0.9f);
    edits.set_pixel_mask(MImage(2, 2, 1u));
    edits.override(target);
    EXPECT_EQ(target.wavelength(), 0.9f);
    EXPECT_EQ(target.description(), std::string("kept"));
    EXPECT_EQ(target.pixel_mask()->width(), 2);
    EXPECT_FALSE(target.rotation_angle());
    target.set_wavelength(boost::none);
    EXPECT_FALSE(target.wavelength());
    EXPECT_TRUE(target.description());
    target.clear();
    EXPECT_FALSE(target.description());
    EXPECT_TRUE(target.nexusTree().empty());
}

TEST(Header, TheWavelengthStandsInTheTreeToo)
{
    MImage image(1, 1, 0);
    image.optionalData().set_wavelength(1.25f);
    const nexus::Node* node =
        image.optionalData().nexusTree().find("/entry/instrument/beam/wavelength");
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(std::get<double>(node->value), 1.25);
    EXPECT_EQ(std::get<std::string>(node->attributes.at("units")), "angstrom");

    // The tree is shared like all of the header.
    MImage other = image;
    other.optionalData().set_wavelength(2.5f);
    EXPECT_EQ(std::get<double>(node->value), 1.25);
}

TEST(NeXusTree, RendersItsValuesAsLines)
{
    nexus::MBasicNeXusTree tree;
    tree.node("/entry").attributes["NX_class"] = std::string("NXentry");
    tree.setNumber("/entry/b", 0.25, "m");
    tree.setText("/entry/a", "text");
    tree.node("/entry/c").value = std::vector<std::int64_t>(20, 3);
    EXPECT_EQ(tree.toText(), "/entry/a = text\n"
                             "/entry/b = 0.25 m\n"
                             "/entry/c = [3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, ... 20 "
                             "values]\n");
    nexus::MBasicNeXusTree taken;
    taken = std::move(tree);
    EXPECT_EQ(taken.nodes().size(), 4u);
    taken.clear();
    EXPECT_TRUE(taken.empty());
}
