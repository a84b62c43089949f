#pragma once

// Jobs of one group share a resource, such as the board's port: the Runtime starts a job only after
// every stopped job of its group has finished.
enum class JobGroup { Board, UserShell };
