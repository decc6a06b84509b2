#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks the links and pictures of the documents.

check_pages.py ROOT: every link leads to a file and a heading that are there, every page is reached
from the README, and the pictures are those of docs/make-pictures, each of them in use, small enough
together.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1]).resolve()
PICTURES = ROOT / "docs" / "pictures"
LARGEST = 3_000_000  # bytes of all pictures


def anchors(page):
    """What a link into the page can name: its headings as websites spell them, and its own names."""
    text = re.sub(r"^```.*?^```", "", page.read_text(encoding="utf-8"), flags=re.M | re.S)
    headings = re.findall(r"^#+ (.*)$", text, flags=re.M)
    spelled = {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}
    return spelled | set(re.findall(r'<a name="([^"]+)">', text))


def links(page):
    text = re.sub(r"^```.*?^```", "", page.read_text(encoding="utf-8"), flags=re.M | re.S)
    return re.findall(r"\]\(([^)\s]+)\)", text)


def main():
    problems, seen, waiting, used = [], set(), [ROOT / "README.md"], set()
    while waiting:
        page = waiting.pop()
        if page in seen:
            continue
        seen.add(page)
        for link in links(page):
            name, _, anchor = link.partition("#")
            target = (page.parent / name).resolve() if name else page
            where = page.relative_to(ROOT)
            if not target.exists():
                problems.append(f"{where}: there is no {link}")
            elif target.suffix == ".md":
                waiting.append(target)
                if anchor and anchor not in anchors(target):
                    problems.append(f"{where}: {name or where} has no heading #{anchor}")
            elif target.suffix == ".png":
                used.add(target)
    pages = set((ROOT / "docs").glob("*.md"))
    problems += [f"{page.relative_to(ROOT)}: no link leads here" for page in pages - seen]

    there = set(PICTURES.glob("*.png"))
    problems += [f"{picture.relative_to(ROOT)}: is in no page" for picture in there - used]
    steps = "".join(
        page.read_text(encoding="utf-8") for page in (ROOT / "host" / "tour").glob("*_steps.cpp")
    )
    of_tour = set(re.findall(r'picture\("([a-z-]+)"', steps))
    made = (ROOT / "docs" / "make-pictures").read_text(encoding="utf-8")
    of_group = set(re.findall(r'"\$pictures/([a-z-]+)\.png"', made))
    if of_tour | of_group != {picture.stem for picture in there}:
        problems.append("docs/pictures are not those of docs/make-pictures: run it")
    size = sum(picture.stat().st_size for picture in there)
    if size > LARGEST:
        problems.append(f"docs/pictures hold {size} bytes, more than {LARGEST}")

    print("\n".join(problems))
    print(f"{len(seen)} pages, {len(there)} pictures, {len(problems)} problems")
    sys.exit(1 if problems or len(seen) < 6 or not of_tour or not of_group else 0)


main()
