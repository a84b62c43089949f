// A module that can be loaded and is no plug-in.
extern "C" int SomethingElse();
int SomethingElse()
{
    return 0;
}
