"""The interpreter's select module and the function that boards have in addition."""

from uselect import *


def select(reading, writing, exceptional, timeout=None):
    poller = poll()
    wanted = ((reading, POLLIN), (writing, POLLOUT), (exceptional, POLLERR))
    for streams, events in wanted:
        for stream in streams:
            poller.register(stream, events)
    found = poller.poll(-1 if timeout is None else int(timeout * 1000))
    return tuple([ready[0] for ready in found if ready[1] & events] for _, events in wanted)
