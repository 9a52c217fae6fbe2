//! The driver inventory of a Windows machine.
//!
//! ```no_run
//! let inventory = driverinventory::Inventory::collect()?;
//! let name = driverinventory::Member::named("name")?;
//! for record in inventory.records() {
//!     println!("{}", record.text(name)?.unwrap_or(""));
//! }
//! # Ok::<(), driverinventory::Error>(())
//! ```
mod ffi;

use std::ffi::{c_void, CStr, CString};
use std::fmt;
use std::os::raw::c_char;
use std::ptr;

/// A call that failed.
#[derive(Debug)]
pub struct Error {
    /// Such as 7, when a file is no snapshot.
    pub status: i32,
    sentence: String,
}

impl fmt::Display for Error {
    fn fmt(&self, formatter: &mut fmt::Formatter) -> fmt::Result {
        formatter.write_str(&self.sentence)
    }
}

impl std::error::Error for Error {}

pub type Result<T> = std::result::Result<T, Error>;

/// Whether there is a value.
fn checked(status: i32) -> Result<bool> {
    match status {
        ffi::OK => Ok(true),
        ffi::ABSENT => Ok(false),
        // The sentence is never null, and belongs to this thread until its next failure.
        _ => Err(Error {
            status,
            sentence: unsafe { CStr::from_ptr(ffi::driverinventory_error()) }.to_string_lossy().into_owned(),
        }),
    }
}

fn c_text(text: &str) -> Result<CString> {
    CString::new(text).map_err(|_| Error { status: 2, sentence: format!("{:?} holds a zero.", text) })
}

/// A text of the library, for as long as its owner lives.
unsafe fn borrowed<'a>(text: *const c_char, length: usize) -> Result<&'a str> {
    let bytes = std::slice::from_raw_parts(text as *const u8, length);
    std::str::from_utf8(bytes).map_err(|_| Error { status: 10, sentence: "A text is not UTF-8.".to_string() })
}

/// A member of records.
#[derive(Clone, Copy, Debug, PartialEq, Eq)]
pub struct Member(i32);

impl Member {
    pub fn named(name: &str) -> Result<Member> {
        let text = c_text(name)?;
        match unsafe { ffi::driverinventory_find_member(text.as_ptr()) } {
            -1 => Err(Error { status: 5, sentence: format!("There is no member {}.", name) }),
            number => Ok(Member(number)),
        }
    }
}

/// The documents that the library writes.
#[derive(Clone, Copy, Debug)]
pub enum Document {
    Json = 1,
    JsonLines = 2,
    Snapshot = 3,
}

/// A finished inventory.
#[derive(Debug)]
pub struct Inventory {
    handle: *mut ffi::Handle,
    count: usize,
}

// Any thread may use a handle, several at once.
unsafe impl Send for Inventory {}
unsafe impl Sync for Inventory {}

impl Drop for Inventory {
    fn drop(&mut self) {
        unsafe { ffi::driverinventory_release(self.handle) };
    }
}

unsafe extern "C" fn call<F: FnMut(&str, u64, u64) -> bool>(
    context: *mut c_void,
    what: *const c_char,
    done: u64,
    total: u64,
) -> i32 {
    let progress = &mut *(context as *mut F);
    // A panic must not cross the border: it stops.
    let step = std::panic::AssertUnwindSafe(|| progress(&CStr::from_ptr(what).to_string_lossy(), done, total));
    i32::from(!std::panic::catch_unwind(step).unwrap_or(false))
}

impl Inventory {
    fn owned(status: i32, handle: *mut ffi::Handle) -> Result<Inventory> {
        checked(status)?;
        let mut inventory = Inventory { handle, count: 0 };
        checked(unsafe { ffi::driverinventory_count(handle, &mut inventory.count) })?;
        Ok(inventory)
    }

    /// Of this machine.
    pub fn collect() -> Result<Inventory> {
        let mut handle = ptr::null_mut();
        let status = unsafe { ffi::driverinventory_collect(ptr::null(), &mut handle) };
        Inventory::owned(status, handle)
    }

    /// Of this machine; `progress` gets what is being read and the step of how many, and stops with `false`.
    pub fn collect_with<F: FnMut(&str, u64, u64) -> bool>(mut progress: F) -> Result<Inventory> {
        let options = ffi::Options {
            size: std::mem::size_of::<ffi::Options>() as u32,
            kinds: 0,
            verify: 0,
            known_list_count: 0,
            known_lists: ptr::null(),
            host_id: ptr::null(),
            progress: Some(call::<F>),
            context: &mut progress as *mut F as *mut c_void,
        };
        let mut handle = ptr::null_mut();
        let status = unsafe { ffi::driverinventory_collect(&options, &mut handle) };
        Inventory::owned(status, handle)
    }

    /// Of the snapshot in a file.
    pub fn open(path: &str) -> Result<Inventory> {
        let path = c_text(path)?;
        let mut handle = ptr::null_mut();
        let status = unsafe { ffi::driverinventory_open(path.as_ptr(), &mut handle) };
        Inventory::owned(status, handle)
    }

    pub fn records(&self) -> impl ExactSizeIterator<Item = Record<'_>> {
        (0..self.count).map(move |index| Record { inventory: self, index })
    }

    pub fn document(&self, document: Document) -> Result<String> {
        let (mut text, mut length) = (ptr::null_mut(), 0);
        unsafe {
            checked(ffi::driverinventory_document(self.handle, document as i32, &mut text, &mut length))?;
            let copy = borrowed(text, length).map(str::to_owned);
            ffi::driverinventory_free(text);
            copy
        }
    }
}

/// One service, device, package or chipset package.
#[derive(Clone, Copy, Debug)]
pub struct Record<'a> {
    inventory: &'a Inventory,
    index: usize,
}

impl<'a> Record<'a> {
    /// `None` when it is unknown or does not apply.
    pub fn text(&self, member: Member) -> Result<Option<&'a str>> {
        let (mut text, mut length) = (ptr::null(), 0);
        let handle = self.inventory.handle;
        unsafe {
            match checked(ffi::driverinventory_text(handle, self.index, member.0, &mut text, &mut length))? {
                true => borrowed(text, length).map(Some),
                false => Ok(None),
            }
        }
    }

    /// `None` when it is unknown or does not apply.
    pub fn number(&self, member: Member) -> Result<Option<u64>> {
        let mut number = 0;
        let handle = self.inventory.handle;
        let has = checked(unsafe { ffi::driverinventory_number(handle, self.index, member.0, &mut number) })?;
        Ok(if has { Some(number) } else { None })
    }
}
