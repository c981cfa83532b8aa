// Holds the one precompiled header of the tree.
