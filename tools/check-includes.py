#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Checks that the arrows between rooms point down only and end at doors.

A room may include itself and every room that it can reach over the arrows of ARROWS, through the
doors of DOORS. Tests and benchmarks may include everything. imagelib and the path helpers know no Qt; nothing below the
graphical rooms knows a widget. Assertions come from imagelib/image/Assert.h, which keeps them active.
"""

import pathlib
import re
import sys

# Folder or file (without ending) to room; the longest match counts.
ROOMS = {
    "imagelib/image": "image",
    "imagelib/codec": "codec",
    "imagelib/display": "display",
    "imagelib/ipc": "ipc",
    "imagelib/control": "control",
    "imagelib/io/formats/base": "formatbase",
    "imagelib/io/formats/cbf": "cbf",
    "imagelib/io/formats/tiff": "tiff",
    "imagelib/io/formats/edf": "edf",
    "imagelib/io/formats/hdf5/library": "hdf5library",
    "imagelib/io/formats/hdf5/frames": "hdf5frames",
    "imagelib/io/formats/hdf5/nexus": "hdf5nexus",
    "imagelib/io/formats/hdf5/write": "hdf5write",
    "imagelib/io/process": "ioprocess",
    "imagelib/io": "io",
    "src/paths": "paths",
    "src/logic/support": "support",
    "src/logic/records": "records",
    "src/logic/analysis/statistics": "statistics",
    "src/logic/analysis/peaks": "peaks",
    "src/logic/analysis/roi": "roi",
    "src/logic/loading": "loading",
    "src/logic/preload": "preload",
    "src/logic/geometry": "geometry",
    "src/logic/detector": "detector",
    "src/logic/headerfiles": "headerfiles",
    "src/logic/output": "output",
    "src/logic/regionseries": "regionseries",
    "src/logic/service": "service",
    "src/logic/core": "core",
    "src/gui/kit": "guikit",
    "src/gui/panels": "panels",
    "src/gui/panels/detector": "detectorpanel",
    "src/gui/info": "info",
    "src/gui/plot": "plot",
    "src/gui/render": "render",
    "src/gui/render/geometry": "viewgeometry",
    "src/gui/render/gestures": "gestures",
    "src/gui/render/overlays": "overlays",
    "src/gui/window": "window",
    "src/api": "api",
    "src/bin/image": "tool",
    "src/bin/reader": "reader",
    "src/bin": "bin",
    "demo": "demo",
    "simulator": "simulator",
}

ARROWS = {
    "image": [],
    "paths": ["image"],
    "codec": ["image"],
    "display": ["image"],
    "ipc": ["display"],
    "control": ["codec"],
    "formatbase": ["image"],
    "cbf": ["formatbase", "codec"],
    "tiff": ["formatbase", "codec"],
    "edf": ["formatbase", "codec"],
    "hdf5library": ["formatbase", "codec"],
    "hdf5frames": ["hdf5library"],
    "hdf5nexus": ["hdf5frames"],
    "hdf5write": ["hdf5library"],
    "ioprocess": ["formatbase", "ipc"],
    "io": ["cbf", "tiff", "edf", "hdf5nexus", "hdf5write", "ioprocess", "paths"],
    "support": ["image"],
    "records": ["display", "support"],
    "statistics": ["image", "display", "support"],
    "peaks": ["statistics"],
    "roi": ["statistics", "records"],
    "preload": ["io", "ipc", "support"],
    "loading": ["preload", "statistics", "peaks", "roi", "io"],
    "geometry": ["image"],
    "detector": ["control", "io", "ipc", "support"],
    "headerfiles": ["image", "support"],
    "output": ["loading", "records", "roi"],
    "regionseries": ["output"],
    "service": ["loading", "output", "peaks", "geometry", "detector", "headerfiles"],
    "core": ["service"],
    "guikit": ["support", "display"],
    "viewgeometry": ["records"],
    "gestures": ["viewgeometry", "guikit"],
    "overlays": ["viewgeometry", "service"],
    "render": ["gestures", "overlays"],
    "plot": ["guikit", "display", "output"],
    "panels": ["render", "plot", "regionseries"],
    "detectorpanel": ["guikit", "detector"],
    "info": ["guikit", "service"],
    "window": ["info", "panels", "detectorpanel", "core"],
    "tool": ["io", "display", "core", "regionseries"],
    "reader": ["hdf5nexus", "ioprocess"],
    "api": ["window"],
    "bin": ["api"],
    "demo": ["io"],
    "simulator": ["demo", "codec"],
}

# What outsiders may include of a room, by names without ending. A room that is not named here is a
# toolbox: any of its headers may be included from above. Rooms whose names begin with "hdf5" share
# one page and one target, and are open to each other.
DOORS = {
    "display": "MDrawingList MColorTable MContrast MColorMap MRect ColorMapper DisplayValue TransferLevels AxisScale BlockMaxima",
    "ipc": "MMessageQueue MessageChannel SegmentPool MTimer",
    "control": "MHalvoDetector MHalvoMonitor MHalvoStream MHalvoFileWriter MStreamObject ConfigHeader",
    "cbf": "CbfReader CbfWriter",
    "tiff": "TiffReader TiffWriter",
    "edf": "EdfReader",
    "hdf5library": "",
    "hdf5frames": "",
    "hdf5nexus": "NexusReader DatasetList",
    "hdf5write": "NexusWriter",
    "ioprocess": "RemoteFile ReaderServer ReaderProcess",
    "io": "FolderStart MImageSeries MImageWriter MHdf5Writer FormatRegistry",
    "statistics": "ComputeStatistics ContrastRange ImageStatistics GoodPixels PartRange",
    "peaks": "ImagePeaks",
    "roi": "RoiComputer RoiStatistics RegionNumbers RegionWorker",
    "preload": "PreloaderService PreloaderClient PreloaderProcess ReadAhead",
    "loading": "ImageLoader LoaderData SeriesState WorkerPool MaskFixup Thumbnail StepTimes",
    "service": "TarvikService ComputedRegion ContrastChoice CursorInfo",
    "core": "TarvikCore ObjectGenerator",
    "detector": "HalvoService HalvoClient HalvoMonitor HalvoState SeriesProgress FrameTypes",
    "headerfiles": "WriteHeaderToFilesThread UndoHeadersThread HeaderFilesThread HeaderBatch HeaderUndo",
    "viewgeometry": "ViewGeometry RingGeometry",
    "render": "ImageDrawer ImageDrawerMain ImageDrawerThumbnail OpenGlSupport",
    "panels": "ViewBar RoiSideBar PeakFinderBar GotoButton FastContrastControl",
    "detectorpanel": "HalvoCtrlWidget",
    "info": "InfoBarCursor InfoBarImage InfoBarRaw",
    "plot": "Plotter",
    "window": "MainWindow MainWindowGenerator SubWindow",
    "api": "TarvikInterface",
}

WITHOUT_QT = {"image", "paths", "codec", "display", "ipc", "control", "formatbase", "cbf", "tiff", "edf",
              "hdf5library", "hdf5frames", "hdf5nexus", "hdf5write", "ioprocess", "io", "reader", "demo"}
WITH_WIDGETS = {"guikit", "info", "panels", "detectorpanel", "plot", "render", "window", "api", "bin"}
WIDGETS = re.compile(r"Q(Widget|Application|MainWindow|Dialog|MessageBox|Layout|[HV]BoxLayout"
                     r"|Label|PushButton|ToolButton|ToolBar|Splitter|OpenGLWidget|FileDialog"
                     r"|ComboBox|CheckBox|ScrollArea|Action|Menu|Style.*)")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')

ASSERT_HEADER = "imagelib/image/Assert.h"
ASSERTS = {ASSERT_HEADER, "logic/support/Assert.h"}
ASSERTION = re.compile(r"(?<![\w.:])(assert|Q_ASSERT(_X)?)\s*\(")

root = pathlib.Path(__file__).resolve().parent.parent


def room_of(path):
    without_ending = path[: -len(pathlib.PurePath(path).suffix)] if "." in path else path
    matches = [folder for folder in ROOMS
               if path.startswith(folder + "/") or without_ending == folder]
    return ROOMS[max(matches, key=len)] if matches else None


def reachable(room):
    found, open_rooms = {room}, [room]
    while open_rooms:
        for below in ARROWS[open_rooms.pop()]:
            if below not in found:
                found.add(below)
                open_rooms.append(below)
    return found


def assertion_faults(path, name):
    if name == ASSERT_HEADER:
        return
    included = set()
    for number, line in enumerate(path.read_text(errors="replace").splitlines(), 1):
        if match := INCLUDE.match(line):
            included.add(match.group(2))
            if match.group(2) in {"cassert", "assert.h"}:
                yield f"{name}:{number}: assertions come from {ASSERT_HEADER}"
        elif match := ASSERTION.search(line.split("//")[0]):
            if match.group(1) != "assert" or not included & ASSERTS:
                yield f"{name}:{number}: {match.group(1)} without {ASSERT_HEADER}"


def faults(path):
    name = str(path.relative_to(root))
    room = room_of(name)
    if room is None:
        yield f"{name}: belongs to no room; add its folder to tools/check-includes.py"
        return
    yield from assertion_faults(path, name)
    allowed = reachable(room)
    for number, line in enumerate(path.read_text(errors="replace").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        bracket, target = match.groups()
        if bracket == "<" and any((root / each).is_file() for each in (target, "src/" + target)):
            yield f"{name}:{number}: our own headers stand in quotes: {target}"
        if ".." in target.split("/"):
            yield f"{name}:{number}: paths begin at imagelib or src: {target}"
        if bracket == "<":
            if room in WITHOUT_QT and re.fullmatch(r"(Qt\w+/)?Q\w+", target):
                yield f"{name}:{number}: room {room} knows no Qt: {target}"
            elif room not in WITH_WIDGETS and WIDGETS.fullmatch(target.split("/")[-1]):
                yield f"{name}:{number}: room {room} knows no widgets: {target}"
            continue
        candidates = [target, "src/" + target, str(pathlib.PurePath(name).parent / target)]
        known = [each for each in candidates if (root / each).is_file()]
        other = room_of(known[0]) if known else None
        if other is not None and other not in allowed:
            yield f"{name}:{number}: room {room} may not include room {other}: {target}"
        elif (other not in {None, room} and other in DOORS
              and not (room.startswith("hdf5") and other.startswith("hdf5"))):
            if pathlib.PurePath(target).stem not in DOORS[other].split():
                yield (f"{name}:{number}: {target} is inside of room {other}, whose doors are "
                       f"{DOORS[other] or 'open to its neighbours alone'}")


def table_faults():
    """Folders that are a room for cmake but none here, and doors that lead nowhere."""
    for folder in ("imagelib", "src", "demo", "simulator"):
        for lists in sorted((root / folder).rglob("CMakeLists.txt")):
            place = str(lists.parent.relative_to(root))
            if (re.search(r"^tarvik_add_room\(", lists.read_text(), re.MULTILINE)
                    and not any(each == place or each.startswith(place + "/") for each in ROOMS)):
                yield f"{place}: a room without a row in ROOMS of tools/check-includes.py"
    for room, doors in DOORS.items():
        headers = {path.stem for folder, owner in ROOMS.items() if owner == room
                   for path in (root / folder).rglob("*.h")}
        for door in doors.split():
            if door not in headers:
                yield f"tools/check-includes.py: room {room} has no header for its door {door}"


found = list(table_faults())
found += [fault
          for folder in ("imagelib", "src", "demo", "simulator")
          for path in sorted((root / folder).rglob("*"))
          if path.suffix in {".h", ".cpp"}
          for fault in faults(path)]
print("\n".join(found), end="\n" if found else "")
sys.exit(1 if found else 0)
