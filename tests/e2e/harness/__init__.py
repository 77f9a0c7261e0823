"""Starts the real program with everything around it, and drives it as a screen reader's user would."""
