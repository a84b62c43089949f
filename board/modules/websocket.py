"""This board has no network."""

raise ImportError("no module named 'websocket'")
