// Which edges of the instrumented library an input reaches.
#pragma once

namespace fuzz {

// Forgets what the current input has reached.
void BeginInput();
// Whether the current input reached an edge, or a repeat count of one, that none reached before.
bool FoundNewCoverage();
// Edges reached so far by all inputs.
unsigned CoveredEdges();

} // namespace fuzz
