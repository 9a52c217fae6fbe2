"""Texts of records as a page shows them."""

import re

UNSEEN = re.compile("[\x00-\x1f\x7f-\x9f\xad\u061c\u180e\u200b\u200e\u200f\u2028-\u202e\u2060-\u206f\ufeff\ufff9-\ufffb"
                    "\ufffe\uffff\U000e0000-\U000e0fff]")


def visible(text):
    """`text` with the codes of characters that nobody would see."""
    return UNSEEN.sub(lambda found: f"[U+{ord(found[0]):04X}]", text)
