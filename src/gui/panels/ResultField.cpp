// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/panels/ResultField.h"

#include "logic/support/GlobalStyle.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

template <class Number, class Text>
QString valuesText(const std::vector<Number*>& values, const std::vector<Number*>& errors,
                   const Text& text)
{
    QString all;
    for (std::size_t i = 0; i < values.size(); ++i) {
        all += (i > 0 ? QStringLiteral(",") : QString()) + text(*values[i]);
        if (i < errors.size() && errors[i])
            all += QStringLiteral(" ± ") + text(*errors[i]);
    }
    return values.size() > 1 ? '(' + all + ')' : all;
}

}  // namespace

ResultField::AbstractResultVar::AbstractResultVar(QString name, const bool& valid)
    : _name(std::move(name))
    , _valid(valid)
{}

ResultField::ResultVarInt::ResultVarInt(const QString& name, const bool& valid,
                                        std::vector<int*> values, std::vector<int*> errors)
    : AbstractResultVar(name, valid)
    , _values(std::move(values))
    , _errors(std::move(errors))
{}

QString ResultField::ResultVarInt::getString() const
{
    const QString head = _name + QStringLiteral(":  ");
    return _valid ? head + valuesText(_values, _errors, [](int v) { return QString::number(v); })
                  : head;
}

ResultField::ResultVarDouble::ResultVarDouble(const QString& name, const bool& valid,
                                              std::vector<double*> values,
                                              std::vector<double*> errors, int precision)
    : AbstractResultVar(name, valid)
    , _values(std::move(values))
    , _errors(std::move(errors))
    , _precision(precision)
{}

QString ResultField::ResultVarDouble::getString() const
{
    const QString head = _name + QStringLiteral(":  ");
    const auto text = [this](double value) { return QString::number(value, 'g', _precision); };
    return _valid ? head + valuesText(_values, _errors, text) : head;
}

ResultField::ResultField(QWidget* parent)
    : QLabel(parent)
{
    setFont(QFont(GLOBALSTYLE::fontFamily, 12));
    setStyleSheet(QStringLiteral("color: white;"));
    setIndent(10);
    setTextFormat(Qt::RichText);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
}

ResultField::~ResultField() = default;

void ResultField::addVar(const QString& name, const bool& valid, std::vector<int*> values,
                         std::vector<int*> errors, int column, int row)
{
    _add(std::make_shared<ResultVarInt>(name, valid, std::move(values), std::move(errors)), column,
         row);
}

void ResultField::addVar(const QString& name, const bool& valid, std::vector<double*> values,
                         std::vector<double*> errors, int precision, int column, int row)
{
    _add(std::make_shared<ResultVarDouble>(name, valid, std::move(values), std::move(errors),
                                           precision),
         column, row);
}

template <>
void ResultField::addVar<int>(const QString& name, const bool& valid, int* value, int* error,
                              int column, int row)
{
    addVar(name, valid, std::vector{value}, std::vector{error}, column, row);
}

template <>
void ResultField::addVar<double>(const QString& name, const bool& valid, double* value,
                                 double* error, int column, int row)
{
    addVar(name, valid, std::vector{value}, std::vector{error}, 4, column, row);
}

void ResultField::_add(std::shared_ptr<AbstractResultVar> var, int column, int row)
{
    enlarge(row + 1, column + 1);
    _vars[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = std::move(var);
    setText(_table());  // for the size
}

void ResultField::enlarge(int rows, int columns)
{
    _rows = std::max(_rows, rows);
    _columns = std::max(_columns, columns);
    _vars.resize(static_cast<std::size_t>(_rows));
    for (auto& row : _vars)
        row.resize(static_cast<std::size_t>(_columns));
}

QString ResultField::_table() const
{
    QString table = QStringLiteral("<table width=%1>").arg(_columns * _columnWidth);
    for (const auto& row : _vars) {
        table += QStringLiteral("<tr>");
        for (auto var = row.begin(); var != row.end(); ++var) {
            if (!*var)
                continue;
            const bool last = std::none_of(var + 1, row.end(), [](const auto& v) { return v; });
            const auto span = row.end() - var;
            table += last && span > 1 ? QStringLiteral("<td colspan=%1>").arg(span)
                                      : QStringLiteral("<td>");
            table += (*var)->getString() + QStringLiteral("</td>");
        }
        table += QStringLiteral("</tr>");
    }
    return table + QStringLiteral("</table>");
}

QString ResultField::getString() const
{
    QString lines;
    for (const auto& row : _vars)
        for (const auto& var : row)
            if (var)
                lines += QStringLiteral("# ") + var->getString() + '\n';
    return lines;
}

void ResultField::paintEvent(QPaintEvent* event)
{
    // A new text asks for another paint.
    if (const QString table = _table(); table != text())
        setText(table);
    QLabel::paintEvent(event);
}
