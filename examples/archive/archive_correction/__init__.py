"""Corrects an archive of captures of many scanners, spread over the workers of a Dask cluster.

    python3 -m archive_correction ARCHIVE --scanners BLOCKS -o RESULTS

From the outside in: `__main__` reads the command line, `job` plans the work, keeps what is done and
writes the manifest, `engine` hands batches to the cluster, and `station` is what a worker process
has: the archive, the cache of tables and the handles.
"""
