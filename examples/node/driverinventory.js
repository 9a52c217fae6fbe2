// The driver inventory of a Windows machine, through driverinventory.dll. Needs koffi.
'use strict';

const koffi = require('koffi');

const Documents = { json: 1, jsonLines: 2, snapshot: 3 };
const Ok = 0;
const Absent = 1;

/** A call that failed. */
class DriverInventoryError extends Error {
  constructor(status, sentence) {
    super(sentence);
    this.name = 'DriverInventoryError';
    this.status = status;
  }
}

/** Loads the library from `path`, where there is no other by that name on the way to DLLs. */
function load(path = 'driverinventory.dll') {
  const dll = koffi.load(path);
  const handle = 'void *';
  const functions = {
    collect: dll.func('driverinventory_collect', 'int32_t', ['void *', koffi.out(koffi.pointer(handle))]),
    open: dll.func('driverinventory_open', 'int32_t', ['str', koffi.out(koffi.pointer(handle))]),
    release: dll.func('driverinventory_release', 'int32_t', [handle]),
    count: dll.func('driverinventory_count', 'int32_t', [handle, koffi.out('size_t *')]),
    findMember: dll.func('driverinventory_find_member', 'int32_t', ['str']),
    text: dll.func('driverinventory_text', 'int32_t',
      [handle, 'size_t', 'int32_t', koffi.out('void **'), koffi.out('size_t *')]),
    number: dll.func('driverinventory_number', 'int32_t', [handle, 'size_t', 'int32_t', koffi.out('uint64_t *')]),
    document: dll.func('driverinventory_document', 'int32_t',
      [handle, 'int32_t', koffi.out('void **'), koffi.out('size_t *')]),
    free: dll.func('driverinventory_free', 'int32_t', ['void *']),
    error: dll.func('driverinventory_error', 'str', []),
  };

  /** Whether there is a value. */
  function hasValue(status) {
    if (status === Ok || status === Absent) return status === Ok;
    throw new DriverInventoryError(status, functions.error());
  }

  const textAt = (address, length) => koffi.decode(address, 'char', Number(length));

  /** A finished inventory. Release it when it is no longer used. */
  class Inventory {
    #handle;

    constructor(handle) {
      this.#handle = handle;
    }

    /** Of this machine. */
    static collect() {
      const handle = [null];
      hasValue(functions.collect(null, handle));
      return new Inventory(handle[0]);
    }

    /** Of the snapshot in a file. */
    static open(path) {
      const handle = [null];
      hasValue(functions.open(path, handle));
      return new Inventory(handle[0]);
    }

    release() {
      hasValue(functions.release(this.#handle));
      this.#handle = null;
    }

    get length() {
      const count = [0];
      hasValue(functions.count(this.#handle, count));
      return Number(count[0]);
    }

    /** A text of a record; undefined when it is unknown. */
    text(record, member) {
      const text = [null];
      const length = [0];
      const has = hasValue(functions.text(this.#handle, record, functions.findMember(member), text, length));
      return has ? textAt(text[0], length[0]) : undefined;
    }

    /** A number of a record; undefined when it is unknown. */
    number(record, member) {
      const number = [0];
      const has = hasValue(functions.number(this.#handle, record, functions.findMember(member), number));
      return has ? Number(number[0]) : undefined;
    }

    /** The whole inventory as one of Documents. */
    document(document) {
      const text = [null];
      const length = [0];
      hasValue(functions.document(this.#handle, document, text, length));
      try {
        return textAt(text[0], length[0]);
      } finally {
        functions.free(text[0]);
      }
    }
  }
  return Inventory;
}

module.exports = { DriverInventoryError, Documents, load };
