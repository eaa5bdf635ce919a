// The edges of the instrumented library that inputs reach. For one thread.
#pragma once

namespace fuzz {

// Starts a new input.
void BeginInput();
// Whether the current input reached an edge, or a repeat count of one, that no other input reached.
bool FoundNewCoverage();
// Edges reached so far by all inputs.
unsigned CoveredEdges();

} // namespace fuzz
