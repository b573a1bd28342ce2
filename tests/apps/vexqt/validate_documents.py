"""Compares documents with their schemas: all of them in one run, as starting costs the most.

    validate_documents.py SCHEMAS PROPERTIES DOCUMENTS

SCHEMAS is the folder of the schemas. PROPERTIES is what `vexqt properties --json` prints; the
properties of every atom of a `json` document are compared with what it says of the atom's class.
DOCUMENTS is a file of lines "KIND LENGTH", each followed by that many bytes with one or more
documents of the schema KIND. What does not hold is printed. The last line tells how many documents
of each kind there were, and how many of all do not hold. Exit status 0 means that all hold.
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


def form(described):
    """Gives the schema of a value, as `vexqt properties` describes it."""
    bits = described.get("bits", 64)
    forms = {
        "boolean": {"type": "boolean"},
        "unsigned": {"type": "integer", "minimum": 0, "maximum": 2**bits - 1},
        "signed": {"type": "integer", "minimum": -(2 ** (bits - 1)), "maximum": 2 ** (bits - 1) - 1},
        # What is not finite is null.
        "floating": {"type": ["number", "null"]},
        "number": {"type": ["number", "null"]},
        "code": {"type": "string", "maxLength": 4},
        "text": {"type": "string"},
        "date": {"type": "string", "pattern": "^-?[0-9]{4,}-[0-9]{2}-[0-9]{2}T.*Z$"},
        "bytes": {"type": "string", "pattern": "^([0-9a-f]{2})*$"},
        "matrix": {"type": "array", "minItems": 9, "maxItems": 9, "items": {"type": "number"}},
        "color": {"type": "object", "required": ["alpha"]},
        "picture": {"type": "object", "required": ["width", "height"]},
    }
    if "element" in described:
        found = {"type": "array", "items": form(described["element"])}
    elif "columns" in described:
        found = {"type": "array", "items": members(described["columns"])}
    else:
        found = forms[described["type"]]
    return {"anyOf": [found, {"type": "null"}]} if described["canBeAbsent"] else found


def members(properties):
    """Gives the schema of an object that has these properties and no other."""
    return {
        "type": "object",
        "required": [each["name"] for each in properties],
        "properties": {each["name"]: form(each) for each in properties},
        "additionalProperties": False,
    }


def classes(path):
    """Gives a validator of the member "properties" for every class."""
    table = json.loads(pathlib.Path(path).read_text(encoding="utf-8"))
    return {
        each["class"]: jsonschema.Draft202012Validator(members(each["properties"]))
        for each in table["classes"]
    }


def atoms(parents):
    for atom in parents:
        yield atom
        yield from atoms(atom["children"])


def mistakes(schemas, described, kind, document):
    error = jsonschema.exceptions.best_match(schemas[kind].iter_errors(document))
    if error is not None:
        yield error
    elif kind == "json":
        for atom in atoms(document["rootAtoms"]):
            for error in described[atom["class"]].iter_errors(atom["properties"]):
                error.message = f"{atom['class']}: {error.message}"
                yield error


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
    described = classes(sys.argv[2])
    count = collections.Counter()
    count["invalid"] = 0
    for kind, document in documents(sys.argv[3]):
        count[kind] += 1
        error = next(mistakes(schemas, described, kind, document), None)
        if error is not None:
            count["invalid"] += 1
            what = str(error.message)[:300]
            print(f"{kind} of {document.get('file')}: {error.json_path}: {what}")
    print(" ".join(f"{kind}={count[kind]}" for kind in sorted([*schemas, "invalid"])))
    return 1 if count["invalid"] else 0


if __name__ == "__main__":
    sys.exit(main())
