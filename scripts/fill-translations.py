#!/usr/bin/env python3
"""Fills a Qt .ts file from a glossary JSON: fill-translations.py FILE.ts GLOSSARY.json
Each message gets the glossary's text for (context, source), else the '*' text for
source; it is then marked finished. Messages without either are listed and left
unfinished. Existing finished translations are kept unless --overwrite is given."""
import json, sys
import xml.etree.ElementTree as ET

def esc(text):
    return (text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
            .replace('"', "&quot;").replace("'", "&apos;"))

def attrs(el):
    return "".join(' %s="%s"' % (k, esc(v)) for k, v in el.attrib.items())

def write_el(el, indent, out):
    pad = " " * indent
    kids = list(el)
    if kids:
        out.append("%s<%s%s>" % (pad, el.tag, attrs(el)))
        for k in kids:
            write_el(k, indent + 4, out)
        out.append("%s</%s>" % (pad, el.tag))
    else:
        out.append("%s<%s%s>%s</%s>" % (pad, el.tag, attrs(el), esc(el.text or ""), el.tag))

def main():
    args = [a for a in sys.argv[1:] if not a.startswith("--")]
    overwrite = "--overwrite" in sys.argv
    ts_path, glossary_path = args
    glossary = json.load(open(glossary_path, encoding="utf-8"))
    by_context, common = glossary["contexts"], glossary.get("*", {})
    comments = glossary.get("_comments", {})
    root = ET.parse(ts_path).getroot()
    missing = []
    for context in root.iter("context"):
        name = context.findtext("name")
        for message in context.iter("message"):
            source = message.findtext("source")
            tr = message.find("translation")
            if tr is None:
                tr = ET.SubElement(message, "translation")
            done = tr.get("type") is None and ((tr.text or "") or len(tr))
            if done and not overwrite:
                continue
            text = by_context.get(name, {}).get(source, common.get(source))
            if text is None:
                missing.append((name, source))
                continue
            if message.get("numerus") == "yes":  # Chinese has one plural form
                for form in list(tr):
                    tr.remove(form)
                ET.SubElement(tr, "numerusform").text = text
                tr.text = None
            else:
                tr.text = text
            tr.attrib.pop("type", None)
            note = comments.get(name, {}).get(source)
            if note and message.find("translatorcomment") is None:
                c = ET.Element("translatorcomment")
                c.text = note
                message.insert(list(message).index(tr), c)
    out = ['<?xml version="1.0" encoding="utf-8"?>', "<!DOCTYPE TS>", "<TS%s>" % attrs(root)]
    for context in root:
        write_el(context, 0, out)
    out.append("</TS>")
    open(ts_path, "w", encoding="utf-8").write("\n".join(out) + "\n")
    for name, source in missing:
        print("untranslated: %s | %r" % (name, source))
    return 1 if missing else 0

if __name__ == "__main__":
    sys.exit(main())
