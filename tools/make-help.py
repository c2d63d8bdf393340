#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the TARVIK authors
# SPDX-License-Identifier: MIT
"""Makes the pages that the viewer's Documentation button opens.

    make-help.py DOCS FOLDER

Turns the user's part of DOCS (the list PAGES) into HTML in FOLDER, with index.html as the first page.
Links between these pages hold, pictures are copied; of links to other files the text stays. Exits with 1 where a link
or a picture within the pages leads nowhere. Needs Debian's python3-markdown."""
import html
import pathlib
import re
import shutil
import sys

import markdown

# In the order of the contents; the first one is index.html.
PAGES = ["user/index.md", "user/series.md", "user/contrast.md", "user/measure.md", "user/header.md", "user/acquisition.md",
         "user/pictures.md",
         "user/python.md", "user/trouble.md", "user/views.md", "user/programs.md", "user/tarvik-image.md", "display.md",
         "formats/series.md", "formats/header-keys.md", "formats/cbf.md", "formats/tiff.md", "formats/edf.md",
         "formats/hdf5.md"]

STYLE = """
body { margin: 0; display: flex; font: 16px/1.5 sans-serif; background: #fff; color: #222; }
nav { position: sticky; top: 0; align-self: flex-start; padding: 1.5em; min-width: 13em; }
img { max-width: 100%; } main { max-width: 52em; padding: 0.5em 2em 4em; min-width: 0; }
nav a { display: block; padding: 0.15em 0; } a { color: #1464dc; text-decoration: none; }
a:hover { text-decoration: underline; } nav .here { font-weight: bold; color: inherit; }
table { border-collapse: collapse; margin: 1em 0; } td, th { border: 1px solid #ccc; padding: 0.3em 0.6em; text-align: left; vertical-align: top; }
code { background: #f0f0f0; padding: 0 0.2em; } pre { background: #f0f0f0; padding: 0.8em; overflow-x: auto; } pre code { padding: 0; }
@media (prefers-color-scheme: dark) { body { background: #222; color: #ddd; } a { color: #78aaff; } code, pre { background: #333; } td, th { border-color: #555; } }
"""


def target(page):
    return "index.html" if page == PAGES[0] else page.replace("/", "-").removesuffix(".md") + ".html"


def title(text):
    return re.match(r"# (.*)", text).group(1).replace("`", "")


def linked(body, docs, page, broken):
    """Leads links between pages to their HTML; drops the others but for addresses on the web."""

    def lead(match):
        address, text = match.group(1), match.group(2)
        if re.match(r"https?://", address):
            return match.group(0)
        name, _, place = address.partition("#")
        source = (docs / page).parent / name if name else docs / page
        if not source.exists():
            broken.append(f"{page}: {address}")
        other = source.resolve().relative_to(docs).as_posix() if source.resolve().is_relative_to(docs) else ""
        if other not in PAGES:
            return text
        return f'<a href="{target(other)}{"#" + place if place else ""}">{text}</a>'

    return re.sub(r'<a href="([^"]*)">(.*?)</a>', lead, body, flags=re.DOTALL)


def pictured(body, docs, page, pictures, broken):
    """Leads pictures to copies beside the pages."""

    def lead(match):
        source = ((docs / page).parent / match.group(2)).resolve()
        if not source.is_relative_to(docs) or not source.exists():
            broken.append(f"{page}: {match.group(2)}")
        pictures.add(source)
        return f'{match.group(1)}src="{source.name}"'

    return re.sub(r'(<img [^>]*?)src="([^"]*)"', lead, body)


def main(docs, folder):
    texts = {page: (docs / page).read_text(encoding="utf-8") for page in PAGES}
    bodies, broken, pictures = {}, [], set()
    for page, text in texts.items():
        # The converter wants a blank line before a list, which other readers don't.
        text = re.sub(r"(?m)^(?!- |\s)(.+)\n(?=- )", r"\1\n\n", text)
        body = markdown.markdown(text, extensions=["tables", "fenced_code", "toc"])
        bodies[page] = pictured(linked(body, docs, page, broken), docs, page, pictures, broken)
    for page, body in bodies.items():
        for other, place in re.findall(r'<a href="([^"#]*)#([^"]+)"', body):
            there = next(p for p in PAGES if target(p) == other)
            if f'id="{place}"' not in bodies[there]:
                broken.append(f"{page}: no heading {place} in {there}")
    if broken:
        sys.exit("Links that lead nowhere:\n" + "\n".join(broken))
    folder.mkdir(parents=True, exist_ok=True)
    for picture in pictures:
        shutil.copy(picture, folder)
    for page, body in bodies.items():
        contents = "".join(
            f'<a href="{target(other)}"{" class=here" if other == page else ""}>{html.escape(title(text))}</a>'
            for other, text in texts.items())
        (folder / target(page)).write_text(
            f'<!DOCTYPE html>\n<html lang="en"><head><meta charset="utf-8"><title>{html.escape(title(texts[page]))}'
            f" - TARVIK</title><style>{STYLE}</style></head>\n<body><nav><strong>TARVIK</strong>{contents}</nav>"
            f"<main>\n{body}\n</main></body></html>\n", encoding="utf-8")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]))
