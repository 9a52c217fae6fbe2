// Package driverinventory collects the driver inventory of this machine through driverinventory.dll. It needs no C
// compiler.
package driverinventory

import (
	"errors"
	"runtime"
	"syscall"
	"unsafe"
)

// Documents.
const (
	JSON      = 1
	JSONLines = 2
	Snapshot  = 3
)

const (
	statusOK     = 0
	statusAbsent = 1
)

var (
	dll         = syscall.NewLazyDLL("driverinventory.dll")
	collect     = dll.NewProc("driverinventory_collect")
	open        = dll.NewProc("driverinventory_open")
	release     = dll.NewProc("driverinventory_release")
	count       = dll.NewProc("driverinventory_count")
	findMember  = dll.NewProc("driverinventory_find_member")
	text        = dll.NewProc("driverinventory_text")
	number      = dll.NewProc("driverinventory_number")
	document    = dll.NewProc("driverinventory_document")
	free        = dll.NewProc("driverinventory_free")
	lastFailure = dll.NewProc("driverinventory_error")
)

// Inventory is a finished inventory. Close it when it is no longer used.
type Inventory struct {
	handle uintptr
}

// call calls a function that gives a status. The sentence of a failure belongs to the thread, so the goroutine stays on
// it meanwhile.
func call(proc *syscall.LazyProc, arguments ...uintptr) (found bool, err error) {
	runtime.LockOSThread()
	defer runtime.UnlockOSThread()
	status, _, _ := proc.Call(arguments...)
	switch int32(status) {
	case statusOK:
		return true, nil
	case statusAbsent:
		return false, nil
	}
	sentence, _, _ := lastFailure.Call()
	return false, errors.New(zeroTerminated(sentence))
}

// pointer makes a pointer of an address that the library gave, which the collector of Go never moves.
func pointer(address uintptr) unsafe.Pointer {
	return *(*unsafe.Pointer)(unsafe.Pointer(&address))
}

func zeroTerminated(address uintptr) string {
	length := uintptr(0)
	for *(*byte)(unsafe.Add(pointer(address), length)) != 0 {
		length++
	}
	return bytes(address, length)
}

func bytes(address, length uintptr) string {
	return string(unsafe.Slice((*byte)(pointer(address)), length))
}

// Collect collects the inventory of this machine.
func Collect() (*Inventory, error) {
	if err := dll.Load(); err != nil {
		return nil, err
	}
	inventory := new(Inventory)
	if _, err := call(collect, 0, uintptr(unsafe.Pointer(&inventory.handle))); err != nil {
		return nil, err
	}
	return inventory, nil
}

// Open opens the snapshot in a file.
func Open(path string) (*Inventory, error) {
	if err := dll.Load(); err != nil {
		return nil, err
	}
	utf8, err := syscall.BytePtrFromString(path)
	if err != nil {
		return nil, err
	}
	inventory := new(Inventory)
	if _, err := call(open, uintptr(unsafe.Pointer(utf8)), uintptr(unsafe.Pointer(&inventory.handle))); err != nil {
		return nil, err
	}
	return inventory, nil
}

// Close lets go of the inventory. Closing it again does nothing.
func (inventory *Inventory) Close() error {
	_, err := call(release, inventory.handle)
	inventory.handle = 0
	return err
}

// Len says how many records there are.
func (inventory *Inventory) Len() (int, error) {
	var records uintptr
	_, err := call(count, inventory.handle, uintptr(unsafe.Pointer(&records)))
	return int(records), err
}

// Member gives the number of a member, once for all records.
func Member(name string) (int32, error) {
	utf8, err := syscall.BytePtrFromString(name)
	if err != nil {
		return -1, err
	}
	member, _, _ := findMember.Call(uintptr(unsafe.Pointer(utf8)))
	if int32(member) < 0 {
		return -1, errors.New("there is no member " + name)
	}
	return int32(member), nil
}

// Text gives a text of a record; empty when it is unknown.
func (inventory *Inventory) Text(record int, member int32) (string, error) {
	var address, length uintptr
	found, err := call(text, inventory.handle, uintptr(record), uintptr(member), uintptr(unsafe.Pointer(&address)),
		uintptr(unsafe.Pointer(&length)))
	if !found {
		return "", err
	}
	return bytes(address, length), nil
}

// Number gives a number of a record; false when it is unknown.
func (inventory *Inventory) Number(record int, member int32) (uint64, bool, error) {
	var value uint64
	found, err := call(number, inventory.handle, uintptr(record), uintptr(member), uintptr(unsafe.Pointer(&value)))
	return value, found, err
}

// Document gives the whole inventory as JSON, JSONLines or Snapshot.
func (inventory *Inventory) Document(which int) (string, error) {
	var address, length uintptr
	if _, err := call(document, inventory.handle, uintptr(which), uintptr(unsafe.Pointer(&address)),
		uintptr(unsafe.Pointer(&length))); err != nil {
		return "", err
	}
	defer free.Call(address)
	return bytes(address, length), nil
}
