"""What a loss of power can leave: the calls of a run, replayed on a disk that forgets."""

import random

TMPFILE = 0o20000000
CREAT = 0o100
TRUNC = 0o1000


class File:
    """Bytes on the medium, and changes that are not there yet, in their order."""

    def __init__(self, content=b""):
        self.durable = content
        self.pending = []  # (offset, bytes), or (length, None) for a truncation.

    def change(self, offset, data):
        self.pending.append((offset, data))

    def sync(self):
        self.durable = self.content(self.pending)
        self.pending = []

    def content(self, changes):
        content = bytearray(self.durable)
        for offset, data in changes:
            end = offset if data is None else offset + len(data)
            if len(content) < end:
                content.extend(bytes(end - len(content)))
            if data is None:
                del content[offset:]
            else:
                content[offset:end] = data
        return bytes(content)


def folder_of(path):
    return path.rpartition("/")[0]


class Disk:
    """Names lead to files (or to None: a folder). A name that is made, moved or removed is on the
    medium after its folder was synced; a renaming happens as a whole, when its target's was."""

    def __init__(self, tree):
        self.durable = {path: None if content is None else File(content)
                        for path, content in tree.items()}
        self.names = dict(self.durable)
        self.pending = []  # (folder, changes), changes: [(path, file)], a removal as (path, Ellipsis)
        self.open = {}     # descriptor -> (file, path)

    def _rename_tree(self, source, target):
        changes = []
        for path in [source] + [p for p in self.names if p.startswith(source + "/")]:
            changes += [(target + path[len(source):], self.names[path]), (path, ...)]
        return changes

    def _apply(self, names, changes):
        for path, file in changes:
            if file is ...:
                names.pop(path, None)
            else:
                names[path] = file

    def _change_names(self, folder, changes):
        self._apply(self.names, changes)
        self.pending.append((folder, changes))

    def do(self, call):
        """Returns whether it changed what a loss of power can leave."""
        if not call.succeeded:
            return False
        if call.kind == "open":
            return self._open(call)
        if call.kind == "dup":
            self.open[call.number] = self.open.get(call.descriptor, (None, ""))
        elif call.kind == "close":
            self.open.pop(call.descriptor, None)
        elif call.kind in ("write", "truncate"):
            file, _ = self.open[call.descriptor]
            file.change(call.number, call.data if call.kind == "write" else None)
            return True
        elif call.kind == "sync":
            return self._sync(call)
        elif call.kind == "rename":
            if call.path != call.other:
                self._change_names(folder_of(call.other),
                                   self._rename_tree(call.path, call.other))
            return True
        elif call.kind == "link":
            file = self.open[call.descriptor][0] if call.descriptor >= 0 else self.names[call.path]
            self._change_names(folder_of(call.other), [(call.other, file)])
            return True
        elif call.kind == "unlink":
            self._change_names(folder_of(call.path), [(call.path, ...)])
            return True
        elif call.kind == "folder":
            self._change_names(folder_of(call.path), [(call.path, None)])
            return True
        return False

    def _open(self, call):
        path = call.path.rstrip("/")
        if call.number & TMPFILE == TMPFILE:
            self.open[call.descriptor] = (File(), path)
            return False
        changed = False
        if path not in self.names and call.number & CREAT:
            self._change_names(folder_of(path), [(path, File())])
            changed = True
        file = self.names.get(path)
        self.open[call.descriptor] = (file, path)
        if call.number & TRUNC and file is not None:
            file.change(0, None)
            changed = True
        return changed

    def _sync(self, call):
        file, path = self.open.get(call.descriptor, (None, None))
        if file is not None:
            file.sync()
        elif path is not None:
            left = []
            for folder, changes in self.pending:
                if folder == path:
                    self._apply(self.durable, changes)
                else:
                    left.append((folder, changes))
            self.pending = left
        return False

    def _tree(self, names, content):
        tree = {}
        for path in sorted(names):
            file = names[path]
            parent = folder_of(path)
            # What lies in a folder whose own name was lost is lost with it.
            if parent and parent not in tree:
                continue
            tree[path] = None if file is None else content(file)
        return tree

    def states(self, seed):
        """Trees that a loss of power can leave now, each with a word for it."""
        def whole(file): return file.content(file.pending)
        def bare(file): return file.durable
        def zeros(file): return file.durable.ljust(len(whole(file)), b"\0")
        yield "nothing unsynced", self._tree(self.durable, bare)
        yield "everything", self._tree(self.names, whole)
        yield "data without names", self._tree(self.durable, whole)
        yield "names without data", self._tree(self.names, bare)
        yield "names and zeros", self._tree(self.names, zeros)
        for number in range(4):
            chance = random.Random(f"{seed}/{number}")
            names = dict(self.durable)
            reached = {}  # Each folder keeps its own order, as each file does.
            for folder, changes in self.pending:
                reached.setdefault(folder, chance.random())
                if chance.random() < reached[folder]:
                    self._apply(names, changes)
                else:
                    reached[folder] = 0
            contents = {}
            def some(file):
                if id(file) not in contents:
                    kept = [change for change in file.pending if chance.random() < 0.5]
                    if kept and kept[-1][1]:
                        offset, data = kept[-1]
                        kept[-1] = (offset, data[:chance.randrange(len(data)) + 1])
                    contents[id(file)] = file.content(kept)
                return contents[id(file)]
            yield f"a part ({number})", self._tree(names, some)


def states_after_power_cuts(tree, calls, seed):
    """Yields (number of the cut, whether the run was over, word, tree) without repetitions."""
    disk = Disk(tree)
    seen = set()
    cut = 0
    for index, call in enumerate(calls):
        isLast = index == len(calls) - 1
        if not disk.do(call) and not isLast:
            continue
        cut += 1
        for word, state in disk.states(f"{seed}/{cut}"):
            key = (isLast, hash(tuple(sorted(state.items(), key=lambda item: item[0]))))
            if key not in seen:
                seen.add(key)
                yield cut, isLast, word, state
