// Nothing but the precompiled headers, so that they belong to a target of their own.
