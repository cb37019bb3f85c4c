#pragma once

/// Adds the command `view`, which reads and sets what a slice viewer shows.
void giAddViewCommands();
