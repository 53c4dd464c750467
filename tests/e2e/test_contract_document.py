"""The contract, docs/api/openapi.yaml, is well formed and complete, and its examples are valid."""

import jsonschema
import pytest
import yaml

from support import paths
from support.contract import (
    CONTRACT,
    NOTIFICATION,
    SCHEMAS,
    STATUS,
    operations,
    resolve,
    validator,
    violations,
    walk,
)


def test_every_reference_has_a_target_and_every_component_is_used():
    references = {node["$ref"] for _, node in walk(CONTRACT) if isinstance(node, dict) and "$ref" in node}
    components = {
        f"#/components/{kind}/{name}"
        for kind, named in CONTRACT["components"].items()
        for name in named
        if kind != "securitySchemes"
    }
    assert references == components
    schemes = {name for requirement in CONTRACT["security"] for name in requirement}
    assert schemes == set(CONTRACT["components"]["securitySchemes"])


# Kinds of objects in an OpenAPI 3.1 document: the fields that this document uses, and the required ones.
OBJECTS = {
    "document": (
        {"openapi", "jsonSchemaDialect", "info", "servers", "security", "tags", "paths", "components"},
        {"openapi", "info", "paths"},
    ),
    "info": ({"title", "version", "summary", "description"}, {"title", "version"}),
    "server": ({"url", "description"}, {"url"}),
    "tag": ({"name", "description"}, {"name"}),
    "path": ({"description", "get", "post"}, set()),
    "operation": ({"operationId", "tags", "summary", "description", "responses"}, {"responses"}),
    "response": ({"description", "headers", "content"}, {"description"}),
    "header": ({"description", "required", "schema"}, {"schema"}),
    "media type": ({"schema", "example", "examples"}, set()),
    "example": ({"summary", "description", "value"}, {"value"}),
    "security scheme": ({"type", "in", "name", "description"}, {"type", "in", "name"}),
    "components": ({"securitySchemes", "headers", "responses", "schemas", "examples"}, set()),
}


def objects():
    """All objects of the document except schemas, with their kinds."""
    components = CONTRACT["components"]
    yield "document", CONTRACT
    yield "info", CONTRACT["info"]
    yield "components", components
    for kind, nodes in (
        ("server", CONTRACT["servers"]),
        ("tag", CONTRACT["tags"]),
        ("path", CONTRACT["paths"].values()),
        ("header", components["headers"].values()),
        ("security scheme", components["securitySchemes"].values()),
        ("example", components["examples"].values()),
    ):
        for node in nodes:
            yield kind, node
    responses = list(components["responses"].values())
    for _, _, operation in operations():
        yield "operation", operation
        responses += operation["responses"].values()
    for response in map(resolve, responses):
        yield "response", response
        for header in response.get("headers", {}).values():
            yield "header", resolve(header)
        for media_type in response.get("content", {}).values():
            yield "media type", media_type
            for example in media_type.get("examples", {}).values():
                yield "example", resolve(example)


def media_types():
    for _, _, operation in operations():
        for status, response in operation["responses"].items():
            for name, media_type in resolve(response).get("content", {}).items():
                yield status, name, media_type


def test_the_document_is_well_formed():
    assert CONTRACT["openapi"] == "3.1.0"
    assert CONTRACT["jsonSchemaDialect"] == jsonschema.Draft202012Validator.META_SCHEMA["$id"]
    for kind, node in objects():
        known, needed = OBJECTS[kind]
        assert needed <= set(node) <= known, (kind, node)
    for _, node in walk(CONTRACT["paths"]):
        if isinstance(node, dict) and "$ref" in node:
            assert set(node) == {"$ref"}, "outside of schemas, a reference has no other fields"
    names = [operation["operationId"] for _, _, operation in operations()]
    assert len(names) == len(set(names)) == 6
    tags = {tag["name"] for tag in CONTRACT["tags"]}
    assert {tag for _, _, operation in operations() for tag in operation["tags"]} == tags
    assert all(status.isdecimal() for _, _, operation in operations() for status in operation["responses"])


def schemas():
    """Every schema and subschema, with its path."""
    roots = [*SCHEMAS.values(), *(header["schema"] for header in CONTRACT["components"]["headers"].values())]
    pending = roots + [media_type["schema"] for _, _, media_type in media_types() if "schema" in media_type]
    while pending:
        schema = pending.pop()
        if isinstance(schema, bool):
            continue
        yield schema
        for keyword in ("properties", "dependentSchemas"):
            pending += schema.get(keyword, {}).values()
        for keyword in ("allOf", "anyOf", "oneOf"):
            pending += schema.get(keyword, [])
        for keyword in ("if", "then", "else", "not", "items"):
            pending += [schema[keyword]] if keyword in schema else []


KEYWORDS = {
    "$ref", "additionalProperties", "allOf", "anyOf", "const", "contentMediaType", "dependentRequired",
    "description", "else", "enum", "examples", "if", "items", "maximum", "minimum", "not", "oneOf", "pattern",
    "properties", "required", "then", "type",
}


def test_every_schema_is_valid():
    for schema in schemas():
        jsonschema.Draft202012Validator.check_schema(schema)
        # Validators ignore unknown keywords, so a misspelt one must be found here.
        assert set(schema) <= KEYWORDS, schema


def test_no_rule_names_a_key_that_does_not_exist():
    for schema in schemas():
        if "additionalProperties" in schema:
            continue
        required = set(schema.get("required", []))
        for first, others in schema.get("dependentRequired", {}).items():
            required |= {first, *others}
        assert required | set(schema.get("properties", {})) <= set(STATUS), schema


def test_every_example_is_valid():
    count = 0
    for schema in schemas():
        for example in schema.get("examples", []):
            assert not violations(validator(schema), example)
            count += 1
    for _, _, media_type in media_types():
        examples = [resolve(example)["value"] for example in media_type.get("examples", {}).values()]
        examples += [media_type["example"]] if "example" in media_type else []
        for example in examples:
            assert not violations(validator(media_type["schema"]), example)
            count += 1
    assert count > 100


def test_every_key_tells_its_meaning_when_it_is_present_and_an_example():
    for key, schema in {**STATUS, **NOTIFICATION}.items():
        description = " ".join(schema["description"].split())
        assert any(words in description for words in ("Present ", "Always present")), key
        assert schema["examples"], key


def test_no_object_of_an_answer_allows_further_keys():
    for name in ("StatusAnswer", "StatusData", "NotificationAnswer", "Notification", "ActionAnswer"):
        assert SCHEMAS[name]["additionalProperties"] is False


@pytest.mark.parametrize("name", ["openapi.yaml", "control.yaml"])
def test_a_built_document_has_the_version_of_the_service(name):
    built = yaml.safe_load((paths.BUILD / "docs" / "api" / name).read_text())
    source = yaml.safe_load((paths.ROOT / "docs" / "api" / name).read_text())
    version = built["info"]["version"]
    assert f"CMAKE_PROJECT_VERSION:STATIC={version}\n" in (paths.BUILD / "CMakeCache.txt").read_text()
    source["info"]["version"] = version
    assert built == source
