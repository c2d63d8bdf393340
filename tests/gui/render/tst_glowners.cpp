// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What lies on the graphics card ends with its owner, whichever context is current then.
#include "gui/render/SceneRenderer.h"
#include "tests/gui/render/DrawnImage.h"

#include <gtest/gtest.h>

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace {

class Context {
public:
    Context()
    {
        _surface.create();
        EXPECT_TRUE(_context->create());
        enter();
    }
    void enter() { ASSERT_TRUE(_context->makeCurrent(&_surface)); }
    void leave() { _context->doneCurrent(); }
    void end() { _context.reset(); }
    bool isCurrent() const { return QOpenGLContext::currentContext() == _context.get(); }
    /// Textures, buffers and programs that there are.
    int objects()
    {
        enter();
        QOpenGLFunctions& gl = *_context->functions();
        int count = 0;
        for (GLuint name = 1; name < 100; ++name)
            count += gl.glIsTexture(name) + gl.glIsBuffer(name) + gl.glIsProgram(name);
        return count;
    }

private:
    QOffscreenSurface _surface;
    std::unique_ptr<QOpenGLContext> _context = std::make_unique<QOpenGLContext>();
};

/// Has made everything that a view needs.
template <class Owner>
std::unique_ptr<Owner> filled()
{
    auto owner = std::make_unique<Owner>();
    render::ImageTextures* textures = nullptr;
    if constexpr (std::is_same_v<Owner, render::SceneRenderer>)
        textures = &owner->textures();
    else
        textures = owner.get();
    EXPECT_TRUE(textures->uploadImage(render::DisplayImage(images::patterned(8, 8)), 4));
    textures->uploadTables(*morvend::imglib::MColorTable::hdr());
    return owner;
}

template <class Owner>
class GlOwner : public testing::Test {};
using Owners = testing::Types<render::SceneRenderer, render::ImageTextures>;
TYPED_TEST_SUITE(GlOwner, Owners);

TYPED_TEST(GlOwner, EndsWithItsContextCurrentAnotherOneOrNone)
{
    Context own;
    auto owner = filled<TypeParam>();
    EXPECT_GT(own.objects(), 4);
    owner.reset();
    EXPECT_EQ(own.objects(), 0) << "its own";

    owner = filled<TypeParam>();
    own.leave();
    owner.reset();
    EXPECT_EQ(QOpenGLContext::currentContext(), nullptr);
    EXPECT_EQ(own.objects(), 0) << "none";

    owner = filled<TypeParam>();
    Context other;
    const auto others = filled<render::ImageTextures>();
    const int before = other.objects();
    owner.reset();
    EXPECT_TRUE(other.isCurrent());
    EXPECT_EQ(other.objects(), before) << "objects of the same names";
    EXPECT_EQ(own.objects(), 0) << "another one";

    owner = filled<TypeParam>();
    own.end();
    other.enter();
    owner.reset();
    EXPECT_EQ(other.objects(), before) << "after the end of its own";
}

}  // namespace
