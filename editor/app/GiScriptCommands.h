#pragma once

/// Adds the editor's own commands to the interpreter: `segment` and `material`.
void giAddScriptCommands();
