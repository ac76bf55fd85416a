#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Holds docs/description.schema.json against the descriptions here, as the parser's tests hold the parser.

usage: check_schema_of_descriptions.py SCHEMA CORPUS [FILE…]

CORPUS has the folders published, template and file, each with good and bad descriptions. Those that
not-in-schema.txt lists with a reason break a rule that a schema cannot tell: it must take them, so that the
list does not outlive its reasons. Each FILE is a good description as it is, with the form that its keys say."""
import json
import pathlib
import sys

import jsonschema


def load(path):
    return json.loads(path.read_text(encoding="utf-8"))


def main():
    schema, corpus = load(pathlib.Path(sys.argv[1])), pathlib.Path(sys.argv[2])
    jsonschema.Draft7Validator.check_schema(schema)
    lines = (corpus / "not-in-schema.txt").read_text(encoding="utf-8").splitlines()
    beyond = dict(line.split(": ", 1) for line in lines if line and not line.startswith("#"))
    wrong = [f"not-in-schema.txt: {name}: no such case" for name in beyond
             if not (corpus / name).is_file() or "/bad/" not in name]

    def judge(validator, path, name, good):
        errors = [f"{error.json_path}: {error.message[:120]}" for error in validator.iter_errors(load(path))]
        if good and errors:
            wrong.append(f"{name}: refused by the schema: {'; '.join(errors)}")
        if not good and not errors:
            wrong.append(f"{name}: taken by the schema")

    count = 0
    for form in ("published", "template", "file"):
        part = dict(schema, **{"$ref": f"#/definitions/{form}"})
        validator = jsonschema.Draft7Validator(part)
        for path in sorted((corpus / form).glob("*/*.json")):
            name = str(path.relative_to(corpus))
            judge(validator, path, name, path.parent.name == "good" or name in beyond)
            count += 1
    whole = jsonschema.Draft7Validator(schema)
    for path in map(pathlib.Path, sys.argv[3:]):
        judge(whole, path, str(path), True)
    print("\n".join(wrong) if wrong else f"{count} descriptions, {len(beyond)} beyond a schema")
    return 1 if wrong or count < 100 else 0


if __name__ == "__main__":
    sys.exit(main())
