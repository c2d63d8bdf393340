// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Which panels a view has.
#include "gui/kit/ContainerSideBar.h"
#include "gui/render/ImageDrawerMain.h"
#include "gui/window/PanelTree.h"
#include "logic/core/TarvikCore.h"
#include "logic/detector/HalvoService.h"
#include "logic/records/RecordGroups.h"
#include "logic/service/TarvikService.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <sys/fsuid.h>
#include <unistd.h>

namespace {

constexpr unsigned long long FirstKey = 1000;

QStringList titlesOfPanels(const QString& machineSettings)
{
    const TarvikCore core;  // has the types of the records
    RecordGroups groups;
    TarvikService service(groups, std::make_shared<HalvoService>(nullptr, machineSettings),
                          nullptr);
    ImageDrawerMain view(&service, false);
    const std::unique_ptr<ContainerSideBar> root(makePanels(service, view, FirstKey));
    QStringList titles;
    for (const SideBar* panel : *root)
        titles << panel->title();
    return titles;
}

TEST(PanelTree, DetectorsAreDrivenByThoseWhoMay)
{
    const QStringList all{"View", "Statistics", "Info", "Data Acquisition"};
    const tarvik::tests::TempFolder folder;
    const auto settings = [&](const char* permitted) {
        const std::string name = std::string(permitted) + ".conf";
        const std::string path = folder.write(
            name, "[General]\nHalvoAccessibleInUserMode=" + std::string(permitted) + "\n");
        std::filesystem::permissions(path, std::filesystem::perms(0444));
        return QString::fromStdString(path);
    };
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    const QString yes = settings("true");
    const QString no = settings("false");
    // An administrator reads and writes files as a user does.
    constexpr uid_t nobody = 65534;
    ::setfsuid(nobody);
    const QStringList permitted = titlesOfPanels(yes);
    const QStringList forbidden = titlesOfPanels(no);
    ::setfsuid(::geteuid());
    EXPECT_EQ(permitted, all);
    EXPECT_EQ(forbidden, all.mid(0, 3));
}

}  // namespace
