// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/render/ShaderSource.h"

#include "gui/kit/Resources.h"
#include "logic/support/Assert.h"

#include <QFile>

namespace render {

namespace {

QByteArray resourceText(const QString& name)
{
    QFile file(name);
    const bool opened = file.open(QIODevice::ReadOnly | QIODevice::Text);
    assert(opened);
    return file.readAll();
}

}  // namespace

QByteArray shaderSource(const QString& resource)
{
    initResources();
    QByteArray result;
    int number = 0;
    for (const QByteArray& line : resourceText(resource).split('\n')) {
        ++number;
        if (!line.startsWith("#include")) {
            result += line + '\n';
            continue;
        }
        const QList<QByteArray> quoted = line.split('"');
        assert(quoted.size() == 3);
        result += "#line 1 1\n" +
                  resourceText(QStringLiteral(":/") + QString::fromUtf8(quoted[1])) + "#line " +
                  QByteArray::number(number + 1) + " 0\n";
    }
    return result;
}

}  // namespace render
