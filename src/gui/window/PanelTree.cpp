// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/window/PanelTree.h"

#include "gui/info/InfoBarCursor.h"
#include "gui/info/InfoBarImage.h"
#include "gui/info/InfoBarRaw.h"
#include "gui/kit/ContainerSideBar.h"
#include "gui/panels/PeakFinderBar.h"
#include "gui/panels/RoiSideBar.h"
#include "gui/panels/ViewBar.h"
#include "gui/panels/detector/HalvoCtrlWidget.h"
#include "logic/detector/HalvoClient.h"
#include "logic/service/TarvikService.h"

#include <vector>

ContainerSideBar* makePanels(TarvikService& service, ImageDrawerMain& view,
                             unsigned long long firstKey)
{
    auto* root = new ContainerSideBar(firstKey);
    root->addSideBar(new ViewBar(firstKey + 1, &service, &view));
    struct Group {
        unsigned long long key;
        const char* title;
        std::vector<SideBar*> panels;
    };
    // A panel joins here, made for the service with the key after its group's. The panel of the
    // view itself has key 1 and stands in the root.
    const std::vector<Group> groups{
        {2,
         "Statistics",
         {new RoiSideBar(firstKey + 3, &service), new PeakFinderBar(firstKey + 4, &service)}},
        {5,
         "Info",
         {new InfoBarCursor(firstKey + 6, &service), new InfoBarImage(firstKey + 7, &service),
          new InfoBarRaw(firstKey + 8, &service)}}};
    for (const Group& group : groups) {
        if (group.panels.empty())
            continue;
        auto* container = new ContainerSideBar(firstKey + group.key);
        container->setTitle(QString::fromLatin1(group.title));
        for (SideBar* panel : group.panels)
            container->addSideBar(panel);
        root->addSideBar(container);
    }
    if (HalvoClient* const client = service.halvoClient(); client->permission())
        root->addSideBar(new HalvoCtrlWidget(firstKey + 9, client));
    return root;
}
