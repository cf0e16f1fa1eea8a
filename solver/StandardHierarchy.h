#pragma once

namespace zelkin {

// Parent of a node in the full standard skeleton (every node present); -1 for the root, Reference.
int standardParentOf(int nodeId);

} // namespace zelkin
