"""Defers the loading of modules that mpremote imports at its start although few commands use them."""

import contextlib
import importlib
import sys
import types

# For each module, the names that others import from it, which must be callable. If another name is
# imported, the module is loaded at once. Without names, the module itself is imported, and its first
# use loads it.
DEFERRED = {
    "mpremote.mip": ("do_mip",),
    "mpremote.repl": ("do_repl",),
    "configparser": ("ConfigParser",),
    "pathlib": ("Path",),
    "hashlib": (),
    "tempfile": (),
}


class StandIn(types.ModuleType):
    def __init__(self, name, functions):
        super().__init__(name)
        for function in functions:
            setattr(self, function, self.defer(function))

    def load(self):
        if sys.modules.get(self.__name__) is self:
            del sys.modules[self.__name__]
        return importlib.import_module(self.__name__)

    def defer(self, function):
        return lambda *args, **kwargs: getattr(self.load(), function)(*args, **kwargs)

    def __getattr__(self, name):
        if name.startswith("__"):  # The import system looks for such names.
            raise AttributeError(name)
        return getattr(self.load(), name)


class VersionStandIn(StandIn):
    """Takes the place of importlib.metadata while mpremote's package determines its version."""

    class PackageNotFoundError(Exception):
        pass

    was_asked = False

    def version(self, _name):
        self.was_asked = True
        raise self.PackageNotFoundError


def defer_version(stand_in, package):
    def load_version(name):
        if name != "__version__":
            raise AttributeError(name)
        importlib.reload(package)
        return package.__version__

    if stand_in.was_asked and vars(package).pop("__version__", None):
        package.__getattr__ = load_version


@contextlib.contextmanager
def stand_ins(*modules):
    """Places these where import finds them, except for modules that are loaded already."""
    for module in modules:
        sys.modules.setdefault(module.__name__, module)
    try:
        yield
    finally:
        for module in modules:
            if sys.modules.get(module.__name__) is module:
                del sys.modules[module.__name__]


@contextlib.contextmanager
def deferred():
    """Defers these modules for mpremote, which must be imported in this context."""
    metadata = VersionStandIn("importlib.metadata", ())
    with stand_ins(metadata):
        import mpremote
    defer_version(metadata, mpremote)
    with stand_ins(*(StandIn(*row) for row in DEFERRED.items())):
        yield
