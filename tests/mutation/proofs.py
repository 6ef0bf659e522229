"""Proofs that nobody can tell a mutant from the original (tests/mutation/equivalent): what they are about, and why.

An entry is a mutant's name, or says of which rows of a table it is, so that it holds for rows that are added later:

    chassis.cc:kRows[laid_out.groups=1].laid_out.stride: kCard => (kCard + 1)
        of every row with these columns (" and " between several)
    chassis.cc:kRows: exchanged rows of different type, neither kAny
        of any two neighbours that differ in the column; without "neither", whatever it holds"""
import collections
import re
import sys

OF_ROWS = re.compile(r"([^:\[\]]+:\w+)\[([^\[\]]+)\]([.: ].*)\Z")
OF_EXCHANGED_ROWS = re.compile(r"([^:\[\]]+:\w+): exchanged rows of different ([\w.]+)(?:, neither (.+))?\Z")


def read_proofs(path):
    """Entries, each with the reason that follows it, or the group that it stands in. A reason is indented."""
    reasons, group, complete = {}, [], False
    for number, line in enumerate(path.read_text().splitlines(), 1):
        if not line.strip() or line.startswith("#"):
            continue
        if line.startswith(" "):
            if not group:
                sys.exit(f"{path}:{number}: a reason for nothing")
            complete = True
            for entry in group:
                reasons[entry] = (reasons[entry] + " " + line.strip()).strip()
            continue
        if complete:
            group, complete = [], False
        if line in reasons:
            sys.exit(f"{path}:{number}: named twice: {line}")
        group.append(line)
        reasons[line] = ""
    without = [entry for entry, reason in reasons.items() if not reason]
    if without:
        sys.exit(f"{path}: no reason for {without[0]}")
    return reasons


def are_of_rows(entry, of_rows):
    """Whether an entry is about a change of these rows."""
    exchanged = OF_EXCHANGED_ROWS.match(entry)
    if exchanged:
        table, column, excluded = exchanged.groups()
        values = [row.get(column) for row in of_rows.rows]
        return (of_rows.table == table and len(values) == 2 and None not in values and values[0] != values[1] and
                excluded not in values)
    named = OF_ROWS.match(entry)
    if not named or len(of_rows.rows) != 1:
        return False
    table, conditions, change = named.groups()
    holds = (condition.split("=", 1) for condition in conditions.split(" and "))
    return (of_rows.table == table and of_rows.change == change and
            all(len(held) == 2 and of_rows.rows[0].get(held[0]) == held[1] for held in holds))


def covered_by(proofs, mutants):
    """The names of the mutants that each entry is about."""
    names = {mutant.name for mutant in mutants}
    in_tables = collections.defaultdict(list)
    for mutant in mutants:
        if mutant.of_rows:
            in_tables[mutant.of_rows.table].append(mutant)
    covered = {}
    for entry in proofs:
        table = re.match(r"[^:\[]+:[^:\[]*", entry)
        of_table = in_tables[table.group()] if table else []
        found = [mutant.name for mutant in of_table if are_of_rows(entry, mutant.of_rows)]
        covered[entry] = {entry, *found} if entry in names else set(found)
    return covered
