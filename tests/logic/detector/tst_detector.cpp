// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Who may drive the detector.
#include "logic/detector/HalvoService.h"

#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

TEST(Permission, AdministratorsDecideForUsers)
{
    const QTemporaryDir folder;
    HalvoService service(nullptr, folder.filePath("TARVIK.conf"));
    QSignalSpy changes(&service, &HalvoService::permissionSignal);
    EXPECT_TRUE(service.userPermission()) << "when nobody has decided";
    service.setUserPermission(false);
    ASSERT_EQ(changes.size(), 1);
    EXPECT_FALSE(changes[0][0].toBool());
    EXPECT_FALSE(service.userPermission());
    EXPECT_TRUE(service.permission()) << "who can write the file always may";
}

TEST(Permission, ReadOnlySettingsStayAsTheyAre)
{
    // A file in a folder that does not exist can be written by nobody, not even by root.
    HalvoService service(nullptr, "/proc/none/TARVIK.conf");
    QSignalSpy changes(&service, &HalvoService::permissionSignal);
    service.setUserPermission(false);
    EXPECT_EQ(changes.size(), 0);
    EXPECT_TRUE(service.userPermission());
    EXPECT_TRUE(service.permission());
}

}  // namespace
