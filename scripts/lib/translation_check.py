"""Whether a translation is whole. usage: translation_check.py FILE.ts"""

import collections
import re
import sys
import xml.etree.ElementTree as ET

PLACES = re.compile(r"%(?:\d|n)")
MNEMONIC = re.compile(r"&\w")


def mnemonics(text):
    return len(MNEMONIC.findall(text.replace("&&", "")))


def complaints(message):
    source = message.findtext("source")
    translation = message.find("translation")
    forms = [form.text or "" for form in translation.findall("numerusform")] or [translation.text or ""]
    if translation.get("type") is not None or not all(forms):
        yield "is not translated"
        return
    for form in forms:
        if collections.Counter(PLACES.findall(form)) != collections.Counter(PLACES.findall(source)):
            yield f"has other places: {form}"
        if mnemonics(form) != mnemonics(source):
            yield f"has other mnemonics: {form}"
        if form != form.strip():
            yield f"begins or ends with a space: {form}"


def main():
    file = sys.argv[1]
    found = 0
    for context in ET.parse(file).getroot().findall("context"):
        for message in context.findall("message"):
            for complaint in complaints(message):
                print(f"{file}: {context.findtext('name')}: {message.findtext('source')!r} {complaint}", file=sys.stderr)
                found += 1
    return 1 if found else 0


sys.exit(main())
