// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "api/SlotCaller.h"

#include <QMetaMethod>
#include <QObject>

#include <array>
#include <exception>
#include <optional>
#include <variant>

namespace {

/// As many as Qt passes to a slot.
constexpr int MostParameters = 10;

/// One argument, or the place of the result, with the type that the slot has for it.
struct Argument {
    std::variant<std::monostate, int, quint64, double, QString, const void*> value;
    QByteArray type;
    void* place = nullptr;  // of a result: what the pointer points to is in value

    const void* data()
    {
        if (place)
            return &place;
        return std::visit([](auto& each) -> const void* { return &each; }, value);
    }
};

std::optional<QMetaMethod> findSlot(const QMetaObject& type, const QString& command,
                                    qsizetype count)
{
    const QByteArray name = command.toLatin1();
    for (int i = 0; i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        if (method.methodType() == QMetaMethod::Slot && method.methodSignature().contains(name) &&
            qstrcmp(method.tag(), "API_CALLABLE") == 0 && method.parameterCount() >= count)
            return method;
    }
    return {};
}

bool setArgument(Argument& argument, const QString& text)
{
    if (argument.type == "int")
        argument.value = text.toInt();
    else if (argument.type == "double")
        argument.value = text.toDouble();
    else if (argument.type == "QString")
        argument.value = text;
    else if (argument.type.endsWith('*') &&
             (argument.type.contains("MImage") || argument.type.contains("MDrawingList")))
        // The address of what was received with the request: TarvikInterface puts it there.
        // NOLINTNEXTLINE(performance-no-int-to-ptr)
        argument.value = reinterpret_cast<const void*>(static_cast<quintptr>(text.toULongLong()));
    else
        return false;
    return true;
}

/// Why a slot can't be called so, empty if it can.
QString fault(const QMetaMethod& method, const QString& command, int given)
{
    const QString name = QString::fromLatin1(method.name());
    if (name != command)
        return QStringLiteral("the method is called %1").arg(name);
    if (method.parameterCount() > MostParameters || method.parameterCount() > given + 1)
        return QStringLiteral("%1 arguments instead of those of %2")
            .arg(given)
            .arg(QString::fromLatin1(method.methodSignature()));
    return {};
}

bool makeResult(Argument& argument)
{
    if (argument.type == "int*")
        argument.value = 0;
    else if (argument.type == "quint64*")
        argument.value = quint64(0);
    else if (argument.type == "double*")
        argument.value = 0.0;
    else if (argument.type == "QString*")
        argument.value = QString();
    else
        return false;
    argument.place = std::visit([](auto& each) -> void* { return &each; }, argument.value);
    return true;
}

QString resultText(const Argument& result)
{
    if (const auto* number = std::get_if<int>(&result.value))
        return QString::number(*number);
    if (const auto* large = std::get_if<quint64>(&result.value))
        return QString::number(*large);
    if (const auto* real = std::get_if<double>(&result.value))
        return QStringLiteral("%1").arg(*real);
    if (const auto* text = std::get_if<QString>(&result.value))
        return *text;
    return {};
}

bool invoke(const QMetaMethod& method, QObject& object,
            std::array<Argument, MostParameters>& arguments)
{
    std::array<QGenericArgument, MostParameters> a;
    for (int i = 0; i < method.parameterCount(); ++i) {
        const auto at = static_cast<std::size_t>(i);
        a[at] = QGenericArgument(arguments[at].type.constData(), arguments[at].data());
    }
    return method.invoke(&object, Qt::DirectConnection, a[0], a[1], a[2], a[3], a[4], a[5], a[6],
                         a[7], a[8], a[9]);
}

}  // namespace

ApiResult callSlot(QObject& object, const QString& command, const QList<QString>& arguments)
{
    const auto method = findSlot(*object.metaObject(), command, arguments.size());
    if (!method)
        return ApiResult::failure(QStringLiteral("NoMethod"));
    const int parameters = method->parameterCount();
    const auto given = static_cast<int>(arguments.size());
    if (const QString why = fault(*method, command, given); !why.isEmpty())
        return ApiResult::failure({}, why);
    std::array<Argument, MostParameters> values;
    for (int i = 0; i < parameters; ++i) {
        Argument& value = values[static_cast<std::size_t>(i)];
        value.type = method->parameterTypeName(i);
        if (i < given ? !setArgument(value, arguments[i]) : !makeResult(value))
            return ApiResult::failure({}, QStringLiteral("argument %1 of %2 is missing")
                                              .arg(i + 1)
                                              .arg(QString::fromLatin1(method->methodSignature())));
    }

    ApiResult result;
    const auto call = [&] {
        try {
            result.success = invoke(*method, object, values);
            if (parameters > given)
                result.text = resultText(values[static_cast<std::size_t>(given)]);
        } catch (const std::exception& error) {
            result = ApiResult::failure(QString::fromUtf8(error.what()));
        }
    };
    return QMetaObject::invokeMethod(&object, call, Qt::BlockingQueuedConnection)
               ? result
               : ApiResult::failure();
}
