#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Holds docs/description.schema.json against the descriptions here, as the parser's tests hold the parser.

usage: check_schema_of_descriptions.py SCHEMA GUIDE CORPUS [FILE…]

Each key and word that the schema knows must stand in the GUIDE.
CORPUS has the folders published, template and file, each with good and bad descriptions. Those that
not-in-schema.txt lists with a reason break a rule that a schema cannot tell: it must take them, so that the
list does not outlive its reasons. Each FILE is a good description as it is, with the form that its keys say."""
import json
import pathlib
import sys

import jsonschema


def load(path):
    return json.loads(path.read_text(encoding="utf-8"))


def words_of(schema):
    """Keys of descriptions and words that stand for something, in a schema."""
    if isinstance(schema, list):
        for part in schema:
            yield from words_of(part)
    elif isinstance(schema, dict):
        yield from schema.get("properties", {})
        yield from (word for word in schema.get("enum", []) if isinstance(word, str))
        yield from (word for word in [schema.get("const")] if isinstance(word, str))
        for part in schema.values():
            yield from words_of(part)


def main():
    schema, corpus = load(pathlib.Path(sys.argv[1])), pathlib.Path(sys.argv[3])
    guide = pathlib.Path(sys.argv[2]).read_text(encoding="utf-8")
    jsonschema.Draft7Validator.check_schema(schema)
    lines = (corpus / "not-in-schema.txt").read_text(encoding="utf-8").splitlines()
    beyond = dict(line.split(": ", 1) for line in lines if line and not line.startswith("#"))
    wrong = [f"not-in-schema.txt: {name}: no such case" for name in beyond
             if not (corpus / name).is_file() or "/bad/" not in name]

    wrong += [f"{sys.argv[2]} says nothing of `{word}`" for word in sorted(set(words_of(schema)))
              if f"`{word}`" not in guide]

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
    for path in map(pathlib.Path, sys.argv[4:]):
        judge(whole, path, str(path), True)
    print("\n".join(wrong) if wrong else f"{count} descriptions, {len(beyond)} beyond a schema")
    return 1 if wrong or count < 100 else 0


if __name__ == "__main__":
    sys.exit(main())
