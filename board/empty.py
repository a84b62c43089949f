"""An empty module, which stand_ins.py fills."""
