#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks the pages of the guide that the program opens.

check_guide.py ROOT PAGES: every link of PAGES leads to a page and a place that are there, every
picture is there, nothing of the sections is lost, and the pages that the program names exist.
"""
import html
import pathlib
import re
import sys

ROOT, PAGES = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()


def main():
    problems = []
    pages = {page.name: page.read_text(encoding="utf-8") for page in PAGES.glob("*.html")}
    for name, text in pages.items():
        for link in re.findall(r'href="([^"]+)"', text):
            target, _, place = html.unescape(link).partition("#")
            if "://" in target:
                continue
            if target not in pages:
                problems.append(f"{name}: there is no {link}")
            elif place and f'"{place}"' not in pages[target]:
                problems.append(f"{name}: {target} has no place {place}")
        problems += [
            f"{name}: there is no {picture}"
            for picture in re.findall(r'src="([^"]+)"', text)
            if not (PAGES / picture).is_file()
        ]
        if re.search(r"^#+ |\]\(", re.sub(r"<pre>.*?</pre>", "", text, flags=re.S), flags=re.M):
            problems.append(f"{name}: is not all HTML")

    guide = (ROOT / "docs" / "users-guide.md").read_text(encoding="utf-8")
    sections = re.findall(r"^## (.*)$", re.sub(r"^```.*?^```", "", guide, flags=re.M | re.S), flags=re.M)
    titles = {html.unescape(title) for text in pages.values() for title in re.findall(r"<title>(.*?) - Corvane", text)}
    problems += [f"no page about: {section}" for section in sections if section not in titles]

    source = (ROOT / "host" / "workbench" / "guide.cpp").read_text(encoding="utf-8")
    named = set(re.findall(r'"([a-z]+(?:-[a-z]+)+)"', source))
    problems += [f"guide.cpp: there is no page {page}" for page in named if f"{page}.html" not in pages]

    print("\n".join(problems))
    print(f"{len(pages)} pages, {len(sections)} sections, {len(named)} named, {len(problems)} problems")
    sys.exit(1 if problems or len(sections) < 10 or len(named) < 6 else 0)


main()
