"""Checks that every relative link of a site leads somewhere: links.py SITE"""

import html
import pathlib
import re
import sys
import urllib.parse


def main(site):
    pages = {page.resolve(): page.read_text() for page in pathlib.Path(site).rglob("*.html")}
    anchors = {page: set(re.findall(r'\b(?:id|name)="([^"]*)"', text)) for page, text in pages.items()}
    dead = []
    for page, text in pages.items():
        for link in re.findall(r'<[^>]*\b(?:href|src|data)="([^"]*)"', text):
            target = urllib.parse.urlparse(html.unescape(link))
            if target.scheme or target.netloc:
                continue
            path = (page.parent / urllib.parse.unquote(target.path)).resolve() if target.path else page
            fragment = urllib.parse.unquote(target.fragment)
            if not path.exists() or (fragment and fragment not in anchors.get(path, ())):
                dead.append(f"{page.name}: {link}")
    sys.exit("\n".join(dead and ["dead links:", *dead]) or None)


main(sys.argv[1])
