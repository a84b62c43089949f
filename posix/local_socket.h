#pragma once

#include <string>
#include <string_view>

// Connections to other processes of this computer. [any]

// Whether a local socket can have this path: systems limit its length.
bool CanBeSocketPath(const std::string& path);

// Connects to the stream socket at this path. The descriptor does not block and is closed on exec;
// -1 if nothing accepts connections there.
int ConnectToLocalSocket(const std::string& path);

// Listens at this path; only this user can connect. A socket that was left behind there is
// replaced. The descriptor does not block and is closed on exec. On failure returns -1 and sets
// errno.
int ListenOnLocalSocket(const std::string& path, int maxPending);

// Accepts a connection, whose descriptor is as those above; -1 if there is none.
int AcceptConnection(int listener);

// Sends the data as a whole. False if the receiver is gone, or has not read what was sent before.
bool SendToSocket(int fd, std::string_view data);
