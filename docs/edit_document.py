#!/usr/bin/env python3
"""Adds a field to table T001 of a document, and a text to its languages: edit_document.py IN.json OUT.json"""
import copy
import json
import sys


def add(items_of, **values):
    """Puts an item into the first slot behind those that count, or into a new one made like the last."""
    items, place = items_of["Items"], items_of["Count"]
    if place == len(items):
        items.append(copy.deepcopy(items[-1]))
    items[place].update(values)
    items_of["Count"] += 1
    if "Current" in items_of:
        items_of["Current"], items_of["Max"] = items_of["Count"], max(items_of["Max"], len(items))


with open(sys.argv[1], encoding="utf-8") as file:
    document = json.load(file)
schema, language = document["sections"]["Schema"], document["sections"]["Language"]
table = next(table for table in schema["Tables"]["Items"] if table["Tid"] == "T001")
add(table["Fields"], Fid="F050", SQLField="EQUIP.WARRANTY", Lookups="L09", LookupsID="9")
add(language, Code="TXT0050", Texts=["Warranty"] + [""] * 15)
with open(sys.argv[2], "w", encoding="utf-8") as file:
    json.dump(document, file, ensure_ascii=False)
