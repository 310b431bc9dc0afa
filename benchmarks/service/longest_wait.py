"""Asks a service for a URL again and again, until standard input ends. Prints a line after the
first answer, and at the end the longest time that an answer took, in milliseconds.

A process of its own: threads of the measuring one would wait for each other.
"""
import http.client
import select
import sys
import time
import urllib.parse


def ask(connection, path):
    begin = time.monotonic()
    connection.request("GET", path)
    connection.getresponse().read()
    return time.monotonic() - begin


def main():
    url = urllib.parse.urlparse(sys.argv[1])
    connection = http.client.HTTPConnection(url.netloc)
    ask(connection, url.path)
    print("begun", flush=True)
    longest = 0
    while not select.select([sys.stdin], [], [], 0.001)[0]:
        longest = max(longest, ask(connection, url.path))
    print(longest * 1000)


if __name__ == "__main__":
    main()
