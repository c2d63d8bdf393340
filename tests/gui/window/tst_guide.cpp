// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The user guide against the window: whatever can be clicked, typed into or pressed is in the
// guide, and what the guide prints as a name of a control is in the window.
#include "gui/info/HeaderPreviewDialog.h"
#include "gui/info/WriteHeaderToFilesDialog.h"
#include "gui/kit/SideBar.h"
#include "gui/panels/ResultField.h"
#include "gui/plot/Plotter.h"
#include "gui/window/About.h"
#include "gui/window/ExportDialog.h"
#include "gui/window/RecentFiles.h"
#include "gui/window/ShortcutSheet.h"
#include "logic/headerfiles/UndoHeadersThread.h"
#include "tests/gui/window/MainWindowTest.h"

#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QGridLayout>
#include <QGroupBox>
#include <QMenu>
#include <QRegularExpression>
#include <QSet>
#include <QTextBlock>
#include <QTextEdit>
#include <QToolBar>

namespace {

using Names = QSet<QString>;

/// Without the unit in brackets at the end.
QString bare(QString name)
{
    static const QRegularExpression unit(QStringLiteral("\\s*\\((?!X,Y)[^()]*\\):?\\s*$|:\\s*$"));
    return name.remove('&').remove(unit).simplified();
}

QStringList matches(const QString& text, const QString& pattern)
{
    QStringList found;
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    for (auto each = expression.globalMatch(text); each.hasNext();)
        found << each.next().captured(1);
    return found;
}

/// Controls that the panel of the detector holds ready and never shows.
const Names& unseen()
{
    static const Names all{"Automatic", "Manual", "Count Time", "Threshold Energy", "Trigger Mode"};
    return all;
}

/// Names in the guide that the window gets by what is done in it, not by being there.
const Names& ofOtherStates()
{
    static const Names all{"Stop",          // Plot Series, while it runs
                           "Pop In",        // Pop Out, when it is checked
                           "No files yet",  // Recent Files, before there are any
                           // States of a detector, and the button for its connection and series.
                           "Not Available", "Initializing", "Ready", "Acquiring", "Error",
                           "Disconnected", "Abort", "Lost connection to detector"};
    return all;
}

/// What the pages for users name.
struct Guide {
    Names names;    // of controls, in italics
    Names parts;    // in bold
    Names entries;  // first cells of tables

    Guide()
    {
        const QDir folder(QStringLiteral(TARVIK_DOCS "/user"));
        for (const QString& page : folder.entryList({QStringLiteral("*.md")})) {
            QFile file(folder.filePath(page));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            _read(QString::fromUtf8(file.readAll()));
        }
    }
    bool describes(const QString& control) const
    {
        return names.contains(control) || parts.contains(control) || entries.contains(control);
    }

private:
    void _read(QString text)
    {
        static const QRegularExpression code(QStringLiteral("```.*?```|`[^`\\n]*`"),
                                             QRegularExpression::DotMatchesEverythingOption);
        for (const QString& row : matches(text, QStringLiteral("^\\| ([^|\\n]+) \\|"))) {
            entries.insert(bare(row));
            for (const QString& entry : row.split(QStringLiteral(", ")))
                entries.insert(bare(entry));
        }
        text.remove(code);
        for (const QString& part : matches(text, QStringLiteral("\\*\\*([^*]+)\\*\\*")))
            parts.insert(bare(part));
        text.remove(QStringLiteral("**"));
        for (const QString& name : matches(text, QStringLiteral("\\*([^*]+)\\*")))
            names.insert(bare(name));
    }
};

class GuideTest : public MainWindowTest {
protected:
    GuideTest()
    {
        _view = opened(5);
        _window->toggleSideBar(true);
        // What a panel holds is made when it is first shown.
        for (int depth = 0; depth < 3; ++depth) {
            for (SideBar* panel : _window->findChildren<SideBar*>())
                panel->toggleVisible(true);
            settle();
        }
        // Only a circle has an intensity.
        for (auto* button : _window->findChildren<QAbstractButton*>())
            if (button->text() == QLatin1String("Circle Plot"))
                button->click();
        settle();
        collect(*_window);
        collectMenus();
        collectDialogs();
    }

    void add(const QString& name, const QObject& owner)
    {
        static const QRegularExpression letters(QStringLiteral("[A-Za-z]{2}|1:1|σ|%"));
        const QString plain = bare(name.section('\n', 0, 0));
        if (plain.contains(letters))
            _controls.insert(plain, QString::fromLatin1(owner.metaObject()->className()));
    }

    void collect(const QWidget& root)
    {
        for (const auto* action : root.findChildren<QAction*>())
            // That of a bar itself would hide it; the window offers no menu for it. And files have
            // their own names.
            if (!action->isSeparator() && !qobject_cast<QToolBar*>(action->parent()) &&
                !qobject_cast<RecentFiles*>(action->parent()))
                add(action->text(), *action);
        for (const auto* button : root.findChildren<QAbstractButton*>())
            collectButton(*button);
        for (const auto* box : root.findChildren<QGroupBox*>())
            add(box->title(), *box);
        for (const auto* panel : root.findChildren<SideBar*>())
            add(panel->title(), *panel);
        for (const auto* choice : root.findChildren<QComboBox*>())
            for (int i = 0; i < choice->count(); ++i)
                add(choice->itemText(i), *choice);
        for (const auto* label : root.findChildren<QLabel*>())
            collectLabel(*label);
        for (const auto* text : root.findChildren<QTextEdit*>())
            collectFields(*text);
    }

    /// A button says what it is: by its text or, as an icon, by a name for those who can't see it.
    void collectButton(const QAbstractButton& button)
    {
        if (button.objectName().startsWith(QLatin1String("qt_")))
            return;  // of the toolkit, as the arrow of a tool bar without room
        const QString name = button.text().isEmpty() ? button.accessibleName() : button.text();
        EXPECT_FALSE(name.isEmpty())
            << "a button without a name: " << button.metaObject()->className() << ' '
            << qPrintable(button.toolTip());
        add(name, button);
    }

    /// Of labels those that name a field, and the results of a region.
    void collectLabel(const QLabel& label)
    {
        _labels.insert(bare(label.text()));
        if (qobject_cast<const ResultField*>(&label)) {
            static const QRegularExpression tags(QStringLiteral("<[^>]*>"));
            for (const QString& name :
                 matches(label.text().remove(tags), QStringLiteral("([A-Z][A-Za-z]+):")))
                add(name, label);
        } else if (label.buddy()) {
            add(label.text(), label);
        }
    }

    /// The grey fields of a text.
    void collectFields(const QTextEdit& text)
    {
        for (const auto& field : text.extraSelections())
            add(field.cursor.block().text().section(':', 0, 0), text);
    }

    /// Menus of the right button.
    void collectMenus()
    {
        const auto collectFrom = [this](auto open) {
            bool seen = false;
            QTimer poll;
            QObject::connect(&poll, &QTimer::timeout, [&] {
                if (QWidget* menu = QApplication::activePopupWidget()) {
                    seen = true;
                    collect(*menu);
                    for (const QAction* action : menu->actions())
                        add(action->text(), *action);
                    menu->close();
                }
            });
            poll.start(10);
            open();
            EXPECT_TRUE(seen || waitFor([&] { return seen; }));
        };
        for (auto* plot : _window->findChildren<Plotter*>())
            if (plot->isVisible()) {
                collectFrom([plot] { QTest::mouseClick(plot, Qt::RightButton); });
                break;
            }
        for (auto* text : _window->findChildren<QTextEdit*>()) {
            if (!text->isVisible() || text->contextMenuPolicy() != Qt::DefaultContextMenu)
                continue;
            collectFrom([text] {
                QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5},
                                        text->viewport()->mapToGlobal(QPoint(5, 5)));
                QApplication::sendEvent(text->viewport(), &event);
            });
        }
    }

    void collectDialogs()
    {
        const auto job = [] { return HeaderJob::undo(std::make_unique<UndoHeadersThread>()); };
        const auto write = [] { return HeaderJob::write(std::make_unique<UndoHeadersThread>()); };
        collect(About(_window.get()));
        collect(ExportDialog(_view, QStringLiteral("x.png"), QStringLiteral("png")));
        // They delete themselves when they are closed, which they never are here.
        collect(HeaderPreviewDialog(job(), _window.get()));
        collect(HeaderPreviewDialog(write(), _window.get()));
        collect(WriteHeaderToFilesDialog(job(), _window.get()));
    }

    SubWindow* _view = nullptr;
    QMap<QString, QString> _controls;  // and the class of one that has this name
    Names _labels;
    const Guide _guide;
};

TEST_F(GuideTest, DescribesEveryControl)
{
    EXPECT_GT(_controls.size(), 90);
    for (auto each = _controls.begin(); each != _controls.end(); ++each)
        EXPECT_TRUE(_guide.describes(each.key()) || unseen().contains(each.key()))
            << "docs/user lacks *" << qPrintable(each.key()) << "* (" << qPrintable(each.value())
            << ')';
}

TEST_F(GuideTest, NamesNoControlThatIsNotThere)
{
    for (const QString& name : _guide.names)
        EXPECT_TRUE(_controls.contains(name) || _labels.contains(name) ||
                    ofOtherStates().contains(name))
            << "docs/user names *" << qPrintable(name) << "*, which the window lacks";
}

TEST_F(GuideTest, HasARowForEachKeyAndGesture)
{
    find<QAction>(_window.get(), "Shortcuts")->trigger();
    const auto* sheet = _window->findChild<ShortcutSheet*>();
    ASSERT_TRUE(sheet);
    int rows = 0;
    for (const auto* grid : sheet->findChildren<QGridLayout*>()) {
        for (int row = 0; row < grid->rowCount(); ++row) {
            const QLayoutItem* keys = grid->itemAtPosition(row, 0);
            const QLayoutItem* effect = grid->itemAtPosition(row, 1);
            if (!keys || !effect || keys == effect)
                continue;  // a heading spans both columns
            ++rows;
            QString entry = qobject_cast<QLabel*>(keys->widget())->text();
            entry.replace(QRegularExpression(QStringLiteral("(?<=\\w)\\+")), QStringLiteral(" "));
            EXPECT_TRUE(_guide.entries.contains(entry))
                << "docs/user lacks a row | " << qPrintable(entry) << " |";
        }
    }
    EXPECT_GT(rows, 20);
}

}  // namespace
