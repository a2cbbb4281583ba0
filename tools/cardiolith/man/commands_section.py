#!/usr/bin/env python3
"""Writes the COMMANDS section of the manual page, for help2man's --include, from the --help of every
command and subcommand of the built program, so that the page describes each command as the program does.

Usage: commands_section.py PROGRAM OUTPUT
"""
import re
import subprocess
import sys

PROGRAM_NAME = "cardiolith"
# An entry of a help block: two spaces, its names (single spaces inside), then two or more spaces and its
# description, which comes on the next line instead when the names are too long.
ENTRY = re.compile(r"^  (\S(?:\S| (?! ))*)(?: {2,}(\S.*))?$")
CONTINUATION = re.compile(r"^ {3,}(\S.*)$")


def help_of(program, words):
    return subprocess.run([program, *words, "--help"], check=True, capture_output=True, text=True).stdout


def parse(text):
    """The description, the usage and the entries of each block ("Options", ...) of a command's --help."""
    lines = text.splitlines()
    description = lines[0] if lines and not lines[0].startswith("Usage:") else ""
    usage = next(line[len("Usage: "):] for line in lines if line.startswith("Usage: "))
    blocks, block = {}, None
    for line in lines:
        if re.fullmatch(r"[A-Z][A-Za-z ]*:", line):
            block = blocks.setdefault(line[:-1], [])
        elif block is not None and (continued := CONTINUATION.match(line)) and block:
            names, description_text = block[-1]
            block[-1] = (names, f"{description_text} {continued.group(1)}".strip())
        elif block is not None and (entry := ENTRY.match(line)):
            block.append((entry.group(1), entry.group(2) or ""))
        else:
            block = None  # a blank line or the footer ends the block
    return description, usage, blocks


def roff(text):
    """Text safe in a roff line: backslashes escaped, minus signs kept as minus signs, no leading dot, and a
    place to break the line after each comma of a list written without spaces."""
    text = text.replace("\\", "\\e").replace("-", "\\-")
    text = re.sub(r",(?=\S)", r",\\:", text)
    return "\\&" + text if text.startswith((".", "'")) else text


def entry_heading(names):
    """"-p,--pulse INT" as the option names in bold and what follows in roman."""
    first, _, rest = names.partition(" ")
    bold = ", ".join(f"\\fB{roff(name)}\\fR" for name in first.split(","))
    return f"{bold} {roff(rest)}".rstrip()


def section(program, words, out):
    description, usage, blocks = parse(help_of(program, words))
    out.append(f'.SS "{roff(usage)}"')
    out.append(roff(description))
    for heading in ("Positionals", "Options"):
        for names, text in blocks.get(heading, []):
            if names == "-h,--help":
                continue
            out += [".TP", entry_heading(names), roff(text)]
    for name, _ in blocks.get("Subcommands", []):
        section(program, [*words, name], out)


def main(program, output):
    _, _, blocks = parse(help_of(program, []))
    out = ["[COMMANDS]", f"Each command has its own \\fB\\-\\-help\\fR; it is what this section shows."]
    for name, _ in blocks["Subcommands"]:
        section(program, [name], out)
    with open(output, "w", encoding="utf-8") as file:
        file.write("\n".join(out) + "\n")


if __name__ == "__main__":
    main(*sys.argv[1:])
