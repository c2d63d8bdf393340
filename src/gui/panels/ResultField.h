// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Named numbers in a grid.
#pragma once

#include <QLabel>
#include <QString>

#include <memory>
#include <vector>

/// A grid of named values. It keeps pointers, and reads values, errors and validity flags each time
/// it is painted: they must outlive it. Thread: GUI only.
class ResultField : public QLabel {
    Q_OBJECT
public:
    class AbstractResultVar;
    class ResultVarInt;
    class ResultVarDouble;

    explicit ResultField(QWidget* parent = nullptr);
    ~ResultField() override;

    /// Puts values under one name into a cell; the grid grows as needed.
    /// @param valid  while false, the name stands alone
    /// @param errors  of the values, in their order; null for one without
    void addVar(const QString& name, const bool& valid, std::vector<int*> values,
                std::vector<int*> errors, int column, int row);
    /// @param precision  significant digits
    void addVar(const QString& name, const bool& valid, std::vector<double*> values,
                std::vector<double*> errors, int precision, int column, int row);
    /// One value, of 4 digits if it is no integer, with an error or null.
    template <class Number>
    void addVar(const QString& name, const bool& valid, Number* value, Number* error, int column,
                int row);

    /// Grows the grid to at least that size.
    void enlarge(int rows, int columns);
    /// Plain text: a line that begins with "# " for each value.
    QString getString() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void _add(std::shared_ptr<AbstractResultVar> var, int column, int row);
    QString _table() const;

    static constexpr int _columnWidth = 150;
    int _rows = 0;
    int _columns = 0;
    std::vector<std::vector<std::shared_ptr<AbstractResultVar>>> _vars;  // rows of columns
};

template <>
void ResultField::addVar<int>(const QString& name, const bool& valid, int* value, int* error,
                              int column, int row);
template <>
void ResultField::addVar<double>(const QString& name, const bool& valid, double* value,
                                 double* error, int column, int row);

/// One or more values under a name.
class ResultField::AbstractResultVar {
public:
    AbstractResultVar(QString name, const bool& valid);
    virtual ~AbstractResultVar() = default;

    /// "name:  value ± error", "name:  (value,value)", or without a value while not valid.
    virtual QString getString() const = 0;

protected:
    const QString _name;
    const bool& _valid;
};

class ResultField::ResultVarInt : public AbstractResultVar {
public:
    ResultVarInt(const QString& name, const bool& valid, std::vector<int*> values,
                 std::vector<int*> errors);
    QString getString() const override;

private:
    const std::vector<int*> _values;
    const std::vector<int*> _errors;
};

class ResultField::ResultVarDouble : public AbstractResultVar {
public:
    ResultVarDouble(const QString& name, const bool& valid, std::vector<double*> values,
                    std::vector<double*> errors, int precision);
    QString getString() const override;

private:
    const std::vector<double*> _values;
    const std::vector<double*> _errors;
    const int _precision;
};
