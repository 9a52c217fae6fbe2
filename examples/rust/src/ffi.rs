//! The declarations of `driverinventory.h`, as far as the crate uses them.
use std::os::raw::{c_char, c_void};

/// A handle. Never looked into.
#[repr(C)]
pub struct Handle {
    _private: [u8; 0],
}

pub type Progress = unsafe extern "C" fn(context: *mut c_void, what: *const c_char, done: u64, total: u64) -> i32;

#[repr(C)]
pub struct Options {
    pub size: u32,
    pub kinds: u32,
    pub verify: u32,
    pub known_list_count: u32,
    pub known_lists: *const *const c_char,
    pub host_id: *const c_char,
    pub progress: Option<Progress>,
    pub context: *mut c_void,
}

pub const OK: i32 = 0;
pub const ABSENT: i32 = 1;

#[link(name = "driverinventory")]
extern "C" {
    pub fn driverinventory_collect(options: *const Options, inventory: *mut *mut Handle) -> i32;
    pub fn driverinventory_open(path: *const c_char, inventory: *mut *mut Handle) -> i32;
    pub fn driverinventory_release(inventory: *mut Handle) -> i32;
    pub fn driverinventory_count(inventory: *const Handle, count: *mut usize) -> i32;
    pub fn driverinventory_find_member(name: *const c_char) -> i32;
    pub fn driverinventory_text(
        inventory: *const Handle,
        record: usize,
        member: i32,
        text: *mut *const c_char,
        length: *mut usize,
    ) -> i32;
    pub fn driverinventory_number(inventory: *const Handle, record: usize, member: i32, number: *mut u64) -> i32;
    pub fn driverinventory_document(
        inventory: *const Handle,
        document: i32,
        text: *mut *mut c_char,
        length: *mut usize,
    ) -> i32;
    pub fn driverinventory_free(text: *mut c_char) -> i32;
    pub fn driverinventory_error() -> *const c_char;
}
