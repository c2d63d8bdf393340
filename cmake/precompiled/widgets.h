// What most sources of src/gui include; precompiled.
#include "cmake/precompiled/core.h"

#include <QAction>
#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QPainter>
#include <QPointer>
#include <QVBoxLayout>
#include <QWidget>
