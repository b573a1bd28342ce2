"""Compares documents with their schemas: all of them in one run, as starting costs the most.

    validate_documents.py SCHEMAS DOCUMENTS

SCHEMAS is the folder of the schemas. DOCUMENTS is a file of lines "KIND LENGTH", each followed by
that many bytes with one or more documents of the schema KIND. What does not hold is printed. The
last line tells how many documents of each kind there were, and how many of all do not hold. Exit status
0 means that all hold.
"""

import collections
import json
import pathlib
import sys

import jsonschema


def validators(folder):
    found = {}
    for path in sorted(pathlib.Path(folder).glob("*.schema.json")):
        schema = json.loads(path.read_text(encoding="utf-8"))
        validator = jsonschema.validators.validator_for(schema, default=None)
        if validator is not jsonschema.Draft202012Validator:
            sys.exit(f"{path.name}: no schema of 2020-12")
        validator.check_schema(schema)
        found[path.name.partition("-")[0]] = validator(schema)
    return found


def documents(path):
    """Gives pairs of a kind and a document."""
    decoder = json.JSONDecoder()
    with open(path, "rb") as file:
        while header := file.readline():
            kind, length = header.decode().split()
            text = file.read(int(length)).decode("utf-8").strip()
            while text:
                document, end = decoder.raw_decode(text)
                yield kind, document
                text = text[end:].lstrip()


def main():
    schemas = validators(sys.argv[1])
    count = collections.Counter()
    count["invalid"] = 0
    for kind, document in documents(sys.argv[2]):
        count[kind] += 1
        error = jsonschema.exceptions.best_match(schemas[kind].iter_errors(document))
        if error is not None:
            count["invalid"] += 1
            what = str(error.message)[:300]
            print(f"{kind} of {document.get('file')}: {error.json_path}: {what}")
    print(" ".join(f"{kind}={count[kind]}" for kind in sorted([*schemas, "invalid"])))
    return 1 if count["invalid"] else 0


if __name__ == "__main__":
    sys.exit(main())
