#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks JSON documents, one a line on standard input, against the schemas that they name.

usage: check_schema.py SCHEMA-DIRECTORY

Stricter than a schema, which leaves room for new keys: each key must be described."""
import json
import pathlib
import sys

import jsonschema


def undescribed(value, schema, place=""):
    """Places of keys that the schema says nothing of."""
    if isinstance(value, list):
        for item in value:
            yield from undescribed(item, schema.get("items", {}), place + "[]")
    if isinstance(value, dict) and "properties" in schema:
        for key, below in value.items():
            if key in schema["properties"]:
                yield from undescribed(below, schema["properties"][key], f"{place}.{key}")
            else:
                yield f"{place}.{key}"


def problems(document, directory):
    name, _, version = str(document.get("schema")).partition("/")
    path = directory / f"{name}.{version}.json"
    if not path.is_file():
        yield f"no schema {path}"
        return
    schema = json.loads(path.read_text(encoding="utf-8"))
    jsonschema.Draft7Validator.check_schema(schema)
    for error in jsonschema.Draft7Validator(schema).iter_errors(document):
        yield f"{path.name}: {error.json_path}: {error.message}"
    for place in undescribed(document, schema):
        yield f"{path.name}: {place} is not described"


def main():
    found = [problem for line in sys.stdin
             for problem in problems(json.loads(line), pathlib.Path(sys.argv[1]))]
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
