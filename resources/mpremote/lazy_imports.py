"""Defers the loading of modules that mpremote imports at its start although few commands use them."""

import contextlib
import importlib
import os
import sys
import types

from fast_transport import has_parameters

# For each module, the names that others import from it, which must be callable. If another name is
# imported, the module is loaded at once. Without names, the module itself is imported, and its first
# use loads it.
DEFERRED = {
    "mpremote.mip": ("do_mip",),
    "mpremote.repl": ("do_repl",),
    "configparser": ("ConfigParser",),
    "pathlib": ("Path",),
    "textwrap": ("dedent",),
    "ast": (),
    "hashlib": (),
    "tempfile": (),
}


def user_config_dir(*args, appname=None, **options):
    """What platformdirs returns on Linux, in the case that mpremote needs."""
    chosen = os.environ.get("XDG_CONFIG_HOME", "")
    is_simple = sys.platform == "linux" and "ANDROID_DATA" not in os.environ
    if args or not appname or options != {"appauthor": False} or not is_simple:
        return None
    if chosen and (chosen != chosen.strip() or not os.path.isabs(chosen)):
        return None
    return os.path.join(chosen or os.path.expanduser("~/.config"), appname)


# Functions that mpremote and argparse always call, with what they return. The module is loaded only
# if that is None. Python has no translations of argparse, for which it would search at each text.
ANSWERED = {
    "gettext": {
        "gettext": lambda text: text,
        "ngettext": lambda one, many, count: one if count == 1 else many,
    },
    "platform": {"system": lambda: os.uname().sysname},
    "platformdirs": {"user_config_dir": user_config_dir},
}


class StandIn(types.ModuleType):
    def __init__(self, name, functions=(), answers=None):
        super().__init__(name)
        for function in functions:
            setattr(self, function, self.defer(function))
        for function, answer in (answers or {}).items():
            setattr(self, function, self.answer_first(answer, self.defer(function)))

    def load(self):
        if sys.modules.get(self.__name__) is self:
            del sys.modules[self.__name__]
        return importlib.import_module(self.__name__)

    def defer(self, function):
        return lambda *args, **kwargs: getattr(self.load(), function)(*args, **kwargs)

    @staticmethod
    def answer_first(answer, function):
        def call(*args, **kwargs):
            known = answer(*args, **kwargs)
            return function(*args, **kwargs) if known is None else known

        return call

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
    metadata = VersionStandIn("importlib.metadata")
    with stand_ins(metadata):
        import mpremote
    defer_version(metadata, mpremote)
    deferred_modules = [StandIn(name, functions) for name, functions in DEFERRED.items()]
    answering = [StandIn(name, answers=answers) for name, answers in ANSWERED.items()]
    with stand_ins(*deferred_modules, *answering):
        yield
    spare_width_of_terminal()


def spare_width_of_terminal():
    """argparse loads shutil for the width of the terminal, which is 80 where there is none. Of that, it
    leaves two columns free."""
    formatter = getattr(sys.modules.get("argparse"), "HelpFormatter", None)
    init_of_argparse = getattr(formatter, "__init__", None)
    names = ("self", "prog", "indent_increment", "max_help_position", "width")
    if os.isatty(1) or "COLUMNS" in os.environ or not has_parameters(init_of_argparse, *names):
        return

    def __init__(self, prog, indent_increment=2, max_help_position=24, width=None):
        init_of_argparse(self, prog, indent_increment, max_help_position, width or 78)

    formatter.__init__ = __init__
