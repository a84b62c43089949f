# Fails in a nested function call: click a line of the traceback to go to that line of this file.


def ratio(part, whole):
    return part / whole


def report(counts):
    for name, count in counts.items():
        print(name, ratio(count, sum(counts.values()) - 10))


report({"red": 7, "green": 3})
