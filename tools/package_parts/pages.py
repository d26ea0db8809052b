"""The documents as HTML: each page beside its text, with links between the pages, to headings and to pictures."""
import html.parser
import pathlib
import posixpath
import re

import markdown

TEMPLATE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{title}</title>
<style>
body {{ max-width: 58rem; margin: 2rem auto; padding: 0 1rem; font: 1rem/1.5 sans-serif; color: #222; }}
code, pre {{ font: 0.9em/1.4 monospace; background: #f3f3f3; }}
pre {{ padding: 0.6rem; overflow: auto; }}
table {{ border-collapse: collapse; display: block; overflow: auto; }}
th, td {{ border: 1px solid #bbb; padding: 0.25rem 0.5rem; text-align: left; vertical-align: top; }}
img {{ max-width: 100%; }}
</style>
</head>
<body>
{body}
</body>
</html>
"""


def heading_id(text, separator):
    """The name of a heading in links, as the places that show such texts give it."""
    return re.sub(r"[^\w\- ]", "", text.strip().lower()).replace(" ", separator)


class Links(html.parser.HTMLParser):
    """The links and pictures of a page, and what can be linked to in it."""

    def __init__(self, text):
        super().__init__()
        self.targets, self.names = [], set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if (tag, name) in (("a", "href"), ("img", "src")):
                self.targets.append(value)
            elif name == "id":
                self.names.add(value)


def render(text):
    """One page."""
    title = next((line[2:] for line in text.splitlines() if line.startswith("# ")), "VelUI")
    body = markdown.markdown(
        text, output_format="html", extensions=["tables", "fenced_code", "sane_lists", "toc"],
        extension_configs={"toc": {"slugify": heading_id}})
    # Pages link to one another's texts; here they link to one another's pages.
    body = re.sub(r'(<a href="(?!\w+:)[^"#]*)\.md(?=["#])', r"\1.html", body)
    return TEMPLATE.format(title=title, body=body)


def pages(files):
    """The HTML pages of a package: for each of its texts that end in .md one beside it.

    files: what the package holds, by path. A link that leads nowhere in the package ends the work."""
    made = {path[:-3] + ".html": render(data.decode("utf-8"))
            for path, data in files.items() if path.endswith(".md") and not path.startswith("selftest/")}
    links = {path: Links(text) for path, text in made.items()}
    broken = []
    for path, page in links.items():
        for target in page.targets:
            if re.match(r"\w+:", target):
                continue
            file, _, name = target.partition("#")
            file = posixpath.normpath(posixpath.join(posixpath.dirname(path), file)) if file else path
            if file not in made and file not in files:
                broken.append(f"{path}: there is no {file}")
            elif name and file in links and name not in links[file].names:
                broken.append(f"{path}: {file} has no heading #{name}")
    if broken:
        raise SystemExit("package: links lead nowhere:\n  " + "\n  ".join(broken))
    return {path: text.encode("utf-8") for path, text in made.items()}


def texts(root):
    """The documents and their pictures, by path."""
    found = [root / "README.md", *sorted((root / "docs").rglob("*"))]
    return {str(path.relative_to(root)): pathlib.Path(path).read_bytes() for path in found if path.is_file()}
