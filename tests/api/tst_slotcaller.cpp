// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Slots called by their names and arguments as texts.
#include "api/ObjectTable.h"
#include "api/SlotCaller.h"
#include "gui/kit/ApiCallable.h"
#include "tests/api/OtherThread.h"

#include <QThread>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

class Target : public QObject {
    Q_OBJECT
public:
    QStringList calls;

public slots:
    API_CALLABLE void setWhole(int value) { _note("setWhole", QString::number(value)); }
    API_CALLABLE void setReal(double value) { _note("setReal", QString::number(value)); }
    API_CALLABLE void setAll(QString text, double real, int whole)
    {
        _note("setAll", text + ' ' + QString::number(real) + ' ' + QString::number(whole));
    }
    API_CALLABLE void doIt() { _note("doIt"); }
    API_CALLABLE void askWhole(int* value) { *value = -7; }
    API_CALLABLE void askLarge(quint64* value) { *value = ~quint64(0); }
    API_CALLABLE void askReal(double* value) { *value = 1e6 / 3; }
    API_CALLABLE void askText(int which, QString* value) { *value = QString(which, 'x') + "\n"; }
    API_CALLABLE void takeFloat(float value) { _note("takeFloat", QString::number(value)); }
    API_CALLABLE void askFloat(float* value) { *value = 1; }
    API_CALLABLE void fail() { throw std::runtime_error("it is broken"); }
    API_CALLABLE void goAway() { delete this; }
    void untagged() { _note("untagged"); }

private:
    void _note(const char* name, const QString& arguments = {})
    {
        EXPECT_EQ(QThread::currentThread(), thread());
        calls.append(QString(name) + '(' + arguments + ')');
    }
};

ApiResult call(Target& target, const QString& command, const QStringList& arguments = {})
{
    return onOtherThread([&] { return callSlot(target, command, arguments); });
}

TEST(SlotCaller, TextsBecomeArguments)
{
    const struct {
        const char* command;
        QStringList arguments;
        const char* call;
    } rows[] = {
        {"setWhole", {"-42"}, "setWhole(-42)"},
        {"setWhole", {"0x10"}, "setWhole(0)"},
        {"setWhole", {"99999999999"}, "setWhole(0)"},
        {"setReal", {"-1.5e3"}, "setReal(-1500)"},
        {"setReal", {"many"}, "setReal(0)"},
        {"setAll", {"a b", "0.5", "3"}, "setAll(a b 0.5 3)"},
        {"setAll", {"", "", ""}, "setAll( 0 0)"},
        {"doIt", {}, "doIt()"},
    };
    Target target;
    for (const auto& row : rows) {
        target.calls.clear();
        const ApiResult result = call(target, row.command, row.arguments);
        EXPECT_TRUE(result.success) << row.call;
        EXPECT_EQ(result.text, QString()) << row.call;
        EXPECT_EQ(target.calls, QStringList(row.call));
    }
}

TEST(SlotCaller, AnswersBecomeText)
{
    Target target;
    EXPECT_EQ(call(target, "askWhole").text, "-7");
    EXPECT_EQ(call(target, "askLarge").text, "18446744073709551615");
    EXPECT_EQ(call(target, "askReal").text, "333333");
    EXPECT_EQ(call(target, "askText", {"3"}).text, "xxx\n");
}

TEST(SlotCaller, WhatCannotBeCalledSaysWhy)
{
    const struct {
        const char* command;
        QStringList arguments;
        const char* text;
        const char* reason;
    } rows[] = {
        {"untagged", {}, "NoMethod", ""},
        {"deleteLater", {}, "NoMethod", ""},
        {"nothing", {}, "NoMethod", ""},
        {"DoIt", {}, "NoMethod", ""},
        {"setWhole", {"1", "2"}, "NoMethod", ""},
        {"doIt", {"1"}, "NoMethod", ""},
        {"", {}, "", "the method is called setWhole"},
        {"", QStringList(11, "x"), "NoMethod", ""},
        {"setA", {"x"}, "", "the method is called setAll"},
        {"setWhole", {}, "", "argument 1 of setWhole(int) is missing"},
        {"setAll", {"x"}, "", "1 arguments instead of those of setAll(QString,double,int)"},
        {"askWhole", {"1"}, "", "argument 1 of askWhole(int*) is missing"},
        {"takeFloat", {"1"}, "", "argument 1 of takeFloat(float) is missing"},
        {"askFloat", {}, "", "argument 1 of askFloat(float*) is missing"},
        {"fail", {}, "it is broken", ""},
    };
    Target target;
    for (const auto& row : rows) {
        const ApiResult result = call(target, row.command, row.arguments);
        EXPECT_FALSE(result.success) << row.command;
        EXPECT_EQ(result.text, row.text) << row.command;
        EXPECT_EQ(result.reason, row.reason) << row.command;
    }
    EXPECT_TRUE(target.calls.isEmpty());
}

TEST(SlotCaller, ACallMayEndItsObject)
{
    auto* const target = new Target;  // ends itself
    EXPECT_TRUE(call(*target, "goAway").success);
}

TEST(SlotCaller, AnObjectThatGoesServesTheCallFirst)
{
    ObjectTable table;
    Target target;
    table.attach(&target);
    std::promise<void> holding;
    auto result = std::async(std::launch::async, [&] {
        const auto hold = table.hold(&target);
        holding.set_value();
        return callSlot(target, "setWhole", {"5"});
    });
    holding.get_future().wait();
    table.detach(&target);
    EXPECT_TRUE(result.get().success);
    EXPECT_EQ(target.calls, QStringList("setWhole(5)"));
}

}  // namespace

#include "tst_slotcaller.moc"
