#!/usr/bin/env python3
"""Checks the description of the HTTP service, and that every operation in it keeps to it.

The description is an OpenAPI 3.1 document. No validator of 3.1 is packaged, so it is checked by
that of 3.0 in Perl's JSON::Validator. The two differ only in the version and in the dialect of the
schemas. The schemas themselves are checked against JSON Schema 2020-12, the dialect of 3.1.
"""
import argparse
import json
import subprocess
import sys
import urllib.error
import urllib.request

import jsonschema

# Reads a document of OpenAPI 3.0, and writes what is wrong with it.
VALIDATOR = r"""
use JSON::Validator::Schema::OpenAPIv3;
use Mojo::JSON qw(decode_json);
local $/;
my $errors = JSON::Validator::Schema::OpenAPIv3->new(decode_json(<STDIN>))->errors;
print map { "$_\n" } @$errors;
"""

# For every operation: what to ask for, and the body. {key} is the key of an option that exists.
REQUESTS = {
    ("get", "/options"): ("/options?prefix=a", None),
    ("get", "/options/{key}"): ("/options/a.int", None),
    ("put", "/options/{key}"): ("/options/a.new", [1, 2]),
    ("delete", "/options/{key}"): ("/options/a.new", None),
    ("get", "/explain/{key}"): ("/explain/a.int", None),
    ("post", "/messages"): ("/messages", {
        "type": "connector/configuration/ConfigurationGet", "message": {"key": "a.int"}}),
    ("get", "/watch"): ("/watch?key=a.int&prefix=a.", None),
    ("get", "/healthz"): ("/healthz", None),
    ("get", "/readyz"): ("/readyz", None),
    ("get", "/metrics"): ("/metrics", None),
    ("get", "/openapi.json"): ("/openapi.json", None),
}

# Where there is GET, there is HEAD.
REQUESTS.update({("head", path): request for (method, path), request in REQUESTS.items()
                 if method == "get"})

# Requests that must fail: method, target, body, status
FAILURES = [
    ("GET", "/options/none", None, 404),
    ("GET", "/options?unknown=1", None, 400),
    ("PUT", "/options/a.int", None, 400),
    ("PUT", "/options/a.int", {"type": "int", "value": "x"}, 422),
    ("POST", "/messages", {"type": "none"}, 400),
    ("PATCH", "/options", None, 405),
    ("GET", "/nowhere", None, 404),
    ("GET", "/watch", None, 400),
]


def send(base, method, target, body):
    """Returns status, media type and body; of a stream of events, its first event."""
    data = None if body is None else json.dumps(body).encode()
    if method == "PUT" and data is None:
        data = b"{"
    request = urllib.request.Request(base + target, data=data, method=method)
    if data is not None:
        request.add_header("Content-Type", "application/json")
    try:
        with urllib.request.urlopen(request, timeout=20) as response:
            media_type = response.headers.get_content_type()
            if media_type == "text/event-stream" and method != "HEAD":
                lines = iter(response.readline, b"")
                return response.status, media_type, next(
                    line for line in lines if line.startswith(b"data: "))[6:]
            return response.status, media_type, response.read()
    except urllib.error.HTTPError as error:
        return error.code, error.headers.get_content_type(), error.read()


def check_schema(description, schema, text):
    """Checks a JSON text against a schema of the description."""
    whole = {**schema, "components": description["components"]}
    jsonschema.Draft202012Validator(whole).validate(json.loads(text))


def check_description(description):
    assert description["openapi"] == "3.1.0", description["openapi"]
    errors = subprocess.run(["perl", "-e", VALIDATOR], check=True, text=True, capture_output=True,
                            input=json.dumps({**description, "openapi": "3.0.3"})).stdout
    assert errors == "", errors
    for schema in description["components"]["schemas"].values():
        jsonschema.Draft202012Validator.check_schema(schema)


def check_operation(base, description, method, path):
    target, body = REQUESTS[method, path]
    responses = description["paths"][path][method]["responses"]
    status, media_type, text = send(base, method.upper(), target, body)
    assert status == 200, f"{method} {path}: {status} {text}"
    if method == "head":
        assert "content" not in responses["200"] and text == b"", f"{method} {path}: {text}"
        return
    content = responses["200"]["content"]
    assert media_type in content, f"{method} {path}: {media_type}"
    if media_type == "application/json":
        check_schema(description, content[media_type]["schema"], text)
    elif media_type == "text/event-stream":
        check_schema(description, {"$ref": "#/components/schemas/Option"}, text)


def check_failure(base, description, method, target, body, expected):
    status, media_type, text = send(base, method, target, body)
    assert status == expected, f"{method} {target}: {status} {text}"
    assert media_type == "application/problem+json", f"{method} {target}: {media_type}"
    check_schema(description, {"$ref": "#/components/schemas/Problem"}, text)
    assert json.loads(text)["status"] == status, text


def check(base):
    description = json.loads(send(base, "GET", "/openapi.json", None)[2])
    check_description(description)
    headers = [parameter["name"] for parameter in description["paths"]["/watch"]["get"]["parameters"]
               if parameter["in"] == "header"]
    assert headers == ["Last-Event-ID"], headers
    described = {(method, path) for path, item in description["paths"].items() for method in item}
    assert described == set(REQUESTS), described ^ set(REQUESTS)
    for method, path in REQUESTS:
        check_operation(base, description, method, path)
    for failure in FAILURES:
        check_failure(base, description, *failure)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program")
    arguments = parser.parse_args()
    server = subprocess.Popen(
        [arguments.program, "-s", "a.int:int=1", "-s", "a.list:stringArray=[\"x\"]",
         "serve", "--http", "127.0.0.1:0", "--writable", "a."],
        stdout=subprocess.PIPE, text=True)
    try:
        base = server.stdout.readline().split()[-1]
        check(base)
    finally:
        server.terminate()
    return server.wait()


if __name__ == "__main__":
    sys.exit(main())
